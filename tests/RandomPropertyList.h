#pragma once

#include <KWFoundation/KWPropertyList.h>

#include <bit>
#include <random>
#include <string>
#include <vector>

/// Makes property lists of every kind of value, with all the widths and lengths at which an
/// encoding changes.
class RandomPropertyList {
  public:
    /// Sets, nulls, single reals and UIDs are left out where another reader or form has none.
    struct Kinds {
        bool single = true;
        bool uid = true;
        bool unsignedInteger = true;
        bool date = true;
        bool nonFinite = true;
        bool negativeZero = true;
        bool carriageReturn = true;
    };

    RandomPropertyList(unsigned seed, Kinds kinds) : _random(seed), _kinds(kinds) {}

    KWPropertyList make(int depth = 5) {
        KWPropertyList list;
        const auto root = container(list, depth, true);
        list.setRoot(root);
        return list;
    }

  private:
    using Index = KWPropertyList::Index;

    unsigned below(unsigned bound) {
        return std::uniform_int_distribution<unsigned>(0, bound - 1)(_random);
    }

    Index container(KWPropertyList& list, int depth, bool dictionary) {
        static constexpr unsigned sizes[] = {0, 1, 2, 5, 14, 15, 16, 40};
        const unsigned size = sizes[below(depth > 2 ? 5 : 8)];
        std::vector<Index> keys;
        std::vector<Index> values;
        for (unsigned k = 0; k < size; ++k) {
            if (dictionary)
                keys.push_back(list.addString("key " + std::to_string(k)));
            values.push_back(value(list, depth - 1));
        }
        return dictionary ? list.addDictionary(keys, values) : list.addArray(values);
    }

    Index value(KWPropertyList& list, int depth) {
        const unsigned choice = below(depth > 0 ? 12 : 9);
        switch (choice) {
        case 0:
            return list.addBool(below(2) == 0);
        case 1:
            return list.addInt(integer());
        case 2:
            return _kinds.unsignedInteger && below(4) == 0
                       ? list.addUnsigned(~std::uint64_t{below(5)})
                       : list.addInt(integer());
        case 3:
            return _kinds.single ? list.addFloat(static_cast<float>(real()))
                                 : list.addDouble(real());
        case 4:
            return list.addDouble(real());
        case 5:
            return _kinds.uid ? list.addUID(below(2) == 0 ? below(300) : below(2'000'000'000))
                              : list.addInt(integer());
        case 6:
            return list.addString(text());
        case 7:
            return list.addData(bytes());
        case 8:
            return _kinds.date ? list.addDate(static_cast<double>(below(2'000'000'000)) - 1e9)
                               : list.addString(text());
        default:
            return container(list, depth, choice != 9);
        }
    }

    std::int64_t integer() {
        static constexpr std::int64_t edges[] = {
            0,     1,          -1,         127,       128,       255,  256,   65535,
            65536, 4294967295, 4294967296, INT64_MAX, INT64_MIN, -128, -65536};
        return edges[below(std::size(edges))];
    }

    double real() {
        static constexpr double edges[] = {0.0, -0.0, 0.1, -1.5, 1e300, 5e-324, 3.4e38, 1.0 / 3.0};
        static constexpr double extremes[] = {std::numeric_limits<double>::infinity(),
                                              -std::numeric_limits<double>::infinity(),
                                              std::numeric_limits<double>::quiet_NaN()};
        if (_kinds.nonFinite && below(6) == 0)
            return extremes[below(3)];
        const double edge = edges[below(std::size(edges))];
        return _kinds.negativeZero || edge != 0 ? edge : 0;
    }

    std::string text() {
        static constexpr const char* pieces[] = {"a",          "<&>\"'",     "\n\t", "é",  "日本語",
                                                 "\U0001F600", "0123456789", " ",    "]]>"};
        std::string made;
        for (unsigned k = below(6); k > 0; --k)
            made += pieces[below(std::size(pieces))];
        // Ends that a reader may trim, or that break lines, are kept too.
        return _kinds.carriageReturn && below(20) == 0 ? made + "\r" : made;
    }

    std::vector<std::byte> bytes() {
        static constexpr unsigned sizes[] = {0, 1, 2, 3, 14, 15, 36, 57, 58, 255, 256, 70000};
        std::vector<std::byte> made(sizes[below(below(10) == 0 ? 12 : 11)]);
        for (std::byte& byte : made)
            byte = static_cast<std::byte>(below(256));
        return made;
    }

    std::mt19937 _random;
    Kinds _kinds;
};
