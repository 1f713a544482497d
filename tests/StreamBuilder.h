#pragma once

#include <KWFoundation/KWTypes.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// Puts a sequential archive together value by value, as a machine of either byte order would have
/// written it, and knows nothing of the classes in it.
class StreamBuilder {
  public:
    using Contents = std::function<void()>;
    /// A class's name and version, then its superclasses'.
    using Chain = std::vector<std::pair<std::string, int>>;

    explicit StreamBuilder(bool bigEndian) : _isBigEndian(bigEndian) {
        _bytes = {std::byte{4}};
        plain(bigEndian ? "typedstream" : "streamtyped");
        integer(1000);
    }

    const KWData& bytes() const { return _bytes; }

    // Values with their types.

    void i(int value) {
        shared("i");
        integer(value);
    }
    void f(float value) {
        shared("f");
        real(value);
    }
    void nil() {
        shared("@");
        put(0x85);
    }
    /// By this number again() refers to the next object.
    int nextLabel() const { return _labels; }
    void object(const Chain& chain, const Contents& contents) {
        shared("@");
        put(0x84);
        ++_labels;
        writeClass(chain);
        contents();
        put(0x86);
    }
    void again(int label) {
        shared("@");
        integer(label);
    }
    void string(const std::string& text) {
        object({{"NSString", 1}, {"NSObject", 0}}, [&] {
            shared("+");
            plain(text);
        });
    }
    void number(float value) {
        object({{"NSNumber", 0}, {"NSValue", 0}, {"NSObject", 0}}, [&] {
            shared("*");
            const auto [known, isNew] = _cStrings.try_emplace("f", _labels);
            if (isNew) {
                ++_labels;
                put(0x84);
                shared("f");
            } else {
                integer(known->second);
            }
            f(value);
        });
    }
    /// Words of four bytes, as they lie in that machine's memory.
    void record(const std::vector<float>& words) {
        object({{"NSData", 0}, {"NSObject", 0}}, [&] {
            i(static_cast<int>(4 * words.size()));
            shared("[" + std::to_string(4 * words.size()) + "c]");
            for (const float word : words)
                ordered(word);
        });
    }
    void list(int count, const Contents& elements) {
        object({{"NSMutableArray", 0}, {"NSArray", 0}, {"NSObject", 0}}, [&] {
            i(count);
            elements();
        });
    }

  private:
    void put(int byte) { _bytes.push_back(static_cast<std::byte>(byte)); }

    template <class T>
    void ordered(T value) {
        std::byte bytes[sizeof(T)];
        std::memcpy(bytes, &value, sizeof(T));
        if (_isBigEndian != (std::endian::native == std::endian::big))
            std::reverse(std::begin(bytes), std::end(bytes));
        _bytes.insert(_bytes.end(), std::begin(bytes), std::end(bytes));
    }
    void integer(int value) {
        if (value >= -110 && value <= 127) {
            put(value & 0xff);
        } else if (value >= -32767 && value <= 32767) {
            put(0x81);
            ordered(static_cast<std::int16_t>(value));
        } else {
            put(0x82);
            ordered(static_cast<std::int32_t>(value));
        }
    }
    void real(float value) {
        constexpr float wholeBelow = 1e6F;
        if (value > -wholeBelow && value < wholeBelow &&
            static_cast<float>(static_cast<int>(value)) == value) {
            integer(static_cast<int>(value));
        } else {
            put(0x83);
            ordered(value);
        }
    }
    void plain(const std::string& text) {
        integer(static_cast<int>(text.size()));
        for (const char c : text)
            put(static_cast<unsigned char>(c));
    }
    void shared(const std::string& text) {
        const auto [known, isNew] =
            _strings.try_emplace(text, static_cast<int>(_strings.size()) - 110);
        if (!isNew)
            return integer(known->second);
        put(0x84);
        plain(text);
    }
    void writeClass(const Chain& chain) {
        for (const auto& [name, version] : chain) {
            const auto [known, isNew] = _classes.try_emplace(name, _labels);
            if (!isNew)
                return integer(known->second);
            ++_labels;
            put(0x84);
            shared(name);
            integer(version);
        }
        put(0x85);
    }

    bool _isBigEndian;
    KWData _bytes;
    int _labels = -110;
    std::map<std::string, int> _strings;
    std::map<std::string, int> _classes;
    std::map<std::string, int> _cStrings;
};
