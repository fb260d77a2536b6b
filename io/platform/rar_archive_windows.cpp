// The Windows implementation, with unrar64.dll. The structures and numbers below are those of the
// library's public documentation (unrar.h).
#include "io/platform/rar_archive.h"

#include <QFile>

#include <windows.h>

#include <mutex>

namespace corvanta::platform {

namespace {

#pragma pack(push, 1) // as in unrar.h
/// RAROpenArchiveData: input of RAROpenArchive; `result` is its output.
struct OpenData
{
    char *name;
    unsigned mode;
    unsigned result;
    char *comment;
    unsigned commentRoom;
    unsigned commentSize;
    unsigned commentState;
};

/// RARHeaderDataEx: output of RARReadHeaderEx. Sizes have a low and a high half.
struct HeaderData
{
    char archiveName[1024];
    wchar_t archiveNameWide[1024];
    char fileName[1024];
    wchar_t fileNameWide[1024];
    unsigned flags;
    unsigned packedSize;
    unsigned packedSizeHigh;
    unsigned size;
    unsigned sizeHigh;
    unsigned hostSystem;
    unsigned crc;
    unsigned time;
    unsigned unpacker;
    unsigned method;
    unsigned attributes;
    char *comment;
    unsigned commentRoom;
    unsigned commentSize;
    unsigned commentState;
    unsigned reserved[1024];
};
#pragma pack(pop)

// Modes of opening, flags of a header, operations, results and messages.
enum : unsigned {
    ModeExtract = 1,
    HeaderSplitBefore = 1,
    HeaderSplitAfter = 2,
    HeaderEncrypted = 4,
    HeaderDirectory = 0x20
};
enum : int { ProcessSkip = 0, ProcessTest = 1, Success = 0 };
enum : unsigned { MessageProcessData = 1 };
// What the callback returns.
constexpr int kContinue = 1;
constexpr int kAbort = -1;

using Callback = int(CALLBACK *)(UINT message, LPARAM user, LPARAM p1, LPARAM p2);

/// The functions of the library. It is never unloaded: an archive may still be open.
struct Library
{
    HANDLE(PASCAL *open)(OpenData *) = nullptr;
    int(PASCAL *close)(HANDLE) = nullptr;
    int(PASCAL *readHeader)(HANDLE, HeaderData *) = nullptr;
    int(PASCAL *process)(HANDLE, int operation, char *folder, char *name) = nullptr;
    void(PASCAL *setCallback)(HANDLE, Callback, LPARAM) = nullptr;
    QString failure; // why the library cannot be used; empty if it can
};

/// Set `function` to the exported function `name`; null when there is none.
template <class F> void link(HMODULE module, const char *name, F *function)
{
    *function = reinterpret_cast<F>(reinterpret_cast<void *>(GetProcAddress(module, name)));
}

Library load()
{
    Library library;
    const HMODULE module = LoadLibraryA("unrar64.dll");
    if (module == nullptr) {
        library.failure = QStringLiteral("ERROR: unable to load unrar.dll");
        return library;
    }
    link(module, "RAROpenArchive", &library.open);
    link(module, "RARCloseArchive", &library.close);
    link(module, "RARReadHeaderEx", &library.readHeader);
    link(module, "RARProcessFile", &library.process);
    link(module, "RARSetCallback", &library.setCallback);
    if (!library.open || !library.close || !library.readHeader || !library.process ||
        !library.setCallback) {
        FreeLibrary(module);
        library.failure = QStringLiteral("ERROR: unable to link unrar.dll functions");
    }
    return library;
}

/// The library, loaded by the first call. Threads: any.
const Library &unrar()
{
    static std::mutex mutex;
    static Library library;
    static bool isLoaded = false;
    const std::lock_guard lock(mutex);
    if (!isLoaded) { // try again with the next archive
        library = load();
        isLoaded = library.failure.isEmpty();
    }
    return library;
}

/// Tests the entry instead of extracting it: the library then passes the unpacked bytes to the
/// callback, verifies the checksum, and writes no file.
class UnrarArchive final : public RarArchive
{
public:
    UnrarArchive(const Library &library, HANDLE handle)
        : m_library(library)
        , m_handle(handle)
    {
    }
    ~UnrarArchive() override { m_library.close(m_handle); }
    qint64 size() const override { return m_size; }
    void setSize(qint64 size) { m_size = size; }

    Result<void, RarError> unpack(const Receiver &receiver) override
    {
        m_receiver = &receiver;
        m_library.setCallback(m_handle, &UnrarArchive::onMessage, reinterpret_cast<LPARAM>(this));
        const int result = m_library.process(m_handle, ProcessTest, nullptr, nullptr);
        // Checked first: the library reports a stop as damage.
        if (m_stopped) {
            return Fault<RarError>{RarError::Stopped};
        }
        if (result != Success || m_done != m_size) {
            return Fault<RarError>{
                RarError::Damaged,
                QStringLiteral("the RAR entry is damaged or compressed by an unsupported method")};
        }
        return {};
    }

private:
    static int CALLBACK onMessage(UINT message, LPARAM user, LPARAM p1, LPARAM p2) noexcept
    {
        auto *const self = reinterpret_cast<UnrarArchive *>(user);
        // Other messages ask for a password or the next volume.
        return message == MessageProcessData ? self->take(p1, p2) : kAbort;
    }
    int take(LPARAM bytes, LPARAM n)
    {
        m_done += n;
        m_stopped = !(*m_receiver)({reinterpret_cast<const char *>(bytes), static_cast<size_t>(n)});
        return m_stopped ? kAbort : kContinue;
    }

    const Library &m_library;
    HANDLE m_handle;
    qint64 m_size = 0;
    qint64 m_done = 0;
    bool m_stopped = false;
    const Receiver *m_receiver = nullptr;
};

} // namespace

Result<std::unique_ptr<RarArchive>, RarError> openRarArchive(const QString &path)
{
    const Library &library = unrar();
    if (!library.failure.isEmpty()) {
        return Fault<RarError>{RarError::NoUnpacker, library.failure};
    }
    QByteArray name = path.toLocal8Bit();
    OpenData data{name.data(), ModeExtract, 0, nullptr, 0, 0, 0};
    const HANDLE handle = library.open(&data);
    if (handle == nullptr || data.result != Success) {
        return Fault<RarError>{RarError::CannotOpen,
                               QStringLiteral("it cannot be opened as a RAR archive")};
    }
    // On the heap: it has about 10 KiB.
    const auto header = std::make_unique<HeaderData>();
    // Closes the handle, whatever the header says.
    auto archive = std::make_unique<UnrarArchive>(library, handle);
    int result = library.readHeader(handle, header.get());
    while (result == Success && (header->flags & HeaderDirectory) != 0) {
        library.process(handle, ProcessSkip, nullptr, nullptr);
        result = library.readHeader(handle, header.get());
    }
    if (result != Success) {
        return Fault<RarError>{RarError::Refused,
                               QStringLiteral("a header of the archive is damaged or truncated")};
    }
    if ((header->flags & HeaderEncrypted) != 0) {
        return Fault<RarError>{RarError::Refused, QStringLiteral("it is encrypted")};
    }
    if ((header->flags & (HeaderSplitBefore | HeaderSplitAfter)) != 0) {
        return Fault<RarError>{RarError::Refused,
                               QStringLiteral("it is spread over several volumes")};
    }
    archive->setSize(
        static_cast<qint64>(static_cast<quint64>(header->sizeHigh) << 32 | header->size));
    return std::unique_ptr<RarArchive>(std::move(archive));
}

} // namespace corvanta::platform
