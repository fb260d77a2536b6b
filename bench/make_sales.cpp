// bench/make_sales.cpp
// Prints the table that all whole-program benchmarks read: make_sales ROWS > sales.csv
//
// Ten columns: 2 whole numbers, 3 decimal numbers, 4 texts (non-ASCII in about two rows of five), 1 date as
// text; 2 to 5 % of the cells are missing. The same rows for the same count, on every machine.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

/// xorshift64*: the standard library's distributions differ between libraries.
class Random
{
public:
    std::uint64_t next()
    {
        m_state ^= m_state >> 12;
        m_state ^= m_state << 25;
        m_state ^= m_state >> 27;
        return m_state * 2685821657736338717ULL;
    }
    unsigned below(unsigned n) { return static_cast<unsigned>((next() >> 32) % n); }

private:
    std::uint64_t m_state = 88172645463325252ULL;
};

constexpr const char *kCities[] = {"Paris", "Zürich", "São Paulo", "Berlin", "Kraków", "Reykjavík", "Lyon", "Milano",
                                   "Praha", "Genève", "Oslo", "Łódź", "Madrid", "Nîmes", "Bruxelles", "東京"};
constexpr const char *kProducts[] = {"Widget", "Gear <large>", "Nut & bolt", "Kabel", "Schräubchen", "Pièce", "Lamp",
                                     "Desk", "Chair", "Räder", "Pump", "Valve"};
constexpr const char *kNames[] = {"Anna", "Björn", "Chloé", "Dmitri", "Elena", "François", "Greta", "Hans", "Ines",
                                  "Jürgen", "Karl", "Løne", "Marie", "Noël", "Olga", "Peter"};

} // namespace

int main(int argc, char **argv)
{
    const long rows = argc > 1 ? std::atol(argv[1]) : 1000000;
    Random random;
    std::puts("id,quantity,price,discount,total,city,product,customer,comment,day");
    for (long i = 0; i < rows; ++i) {
        std::printf("%ld,", i + 1);
        if (random.below(100) >= 3) {
            std::printf("%u", random.below(1000));
        }
        const double price = random.below(10000000) / 100.0;
        const double discount = random.below(1000) / 3000.0;
        std::printf(random.below(100) < 2 ? "," : ",%.2f", price);
        std::printf(random.below(100) < 5 ? "," : ",%.15g", discount);
        std::printf(",%.17g", price * (1 - discount));
        std::printf(",%s", kCities[random.below(16)]);
        std::printf(",%s %u", kProducts[random.below(12)], random.below(500));
        std::printf(",%s %s", kNames[random.below(16)], kNames[random.below(16)]);
        if (random.below(100) < 4) {
            std::printf(",");
        } else {
            std::printf(",\"order %u, to be delivered in week %u\"", random.below(100000), random.below(52) + 1);
        }
        std::printf(",%04u-%02u-%02u\n", 2015 + random.below(11), random.below(12) + 1, random.below(28) + 1);
    }
    return 0;
}
