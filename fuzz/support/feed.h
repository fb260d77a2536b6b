// Takes options and values from the input of a fuzz target, one after the other.
//
// An input that is too short gives zeros, so that every input is valid. Small changes of an input
// give similar values, which a fuzzer needs. Threads: one at a time.
#pragma once
#include "base/bytes.h"

#include <QByteArrayView>

#include <string>

/// The bytes of an input that are not used yet; they must outlive it.
class Feed
{
public:
    Feed(const uint8_t *data, size_t size)
        : m_rest(data, static_cast<qsizetype>(size))
    {
    }

    bool isEmpty() const { return m_rest.isEmpty(); }
    /// All bytes that are left.
    QByteArrayView rest() const { return m_rest; }

    /// Up to `n` bytes.
    QByteArrayView bytes(qsizetype n)
    {
        const QByteArrayView taken = m_rest.first(qMin(n, m_rest.size()));
        m_rest = m_rest.sliced(taken.size());
        return taken;
    }
    quint8 byte()
    {
        const QByteArrayView taken = bytes(1);
        return taken.isEmpty() ? quint8(0) : static_cast<quint8>(taken.front());
    }
    /// A number from 0 to `end` - 1.
    int below(int end) { return byte() % end; }
    bool flag() { return (byte() & 1) != 0; }
    /// The bytes of a plain value of any content.
    template <class T> T value()
    {
        T value{};
        const QByteArrayView taken = bytes(sizeof value);
        std::memcpy(&value, taken.data(), static_cast<size_t>(taken.size()));
        return value;
    }
    /// Up to `units` UTF-16 units: bytes below 0x80 are units, the others begin a unit of two
    /// bytes. So every unit is possible, and ASCII is as written.
    std::u16string text(int units)
    {
        std::u16string text;
        for (int i = 0; i < units && !isEmpty(); ++i) {
            const quint8 first = byte();
            text += static_cast<char16_t>(first < 0x80 ? first : first << 8 | byte());
        }
        return text;
    }
    QString string(int units) { return QStringView(text(units)).toString(); }

private:
    QByteArrayView m_rest;
};
