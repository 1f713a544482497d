#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

// Stands in for a fuzzing engine where the compiler has none: gives the target every seed, and then
// seeds that have been damaged at random, always the same ones.
//
// usage: PROGRAM -runs=COUNT [-artifact_prefix=PREFIX] [SEED_FILE_OR_DIRECTORY...]

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
/// Of the sanitizers; called before they end the process.
extern "C" [[gnu::weak]] void __sanitizer_set_death_callback(void (*callback)());

namespace {

using Bytes = std::vector<std::uint8_t>;

/// The input that is being tried, and where it is kept when it ends the program.
Bytes current;
std::string artifact = "crash-input";

void keepCurrent() {
    if (std::FILE* const file = std::fopen(artifact.c_str(), "wb")) {
        std::fwrite(current.data(), 1, current.size(), file);
        std::fclose(file);
        std::fprintf(stderr, "The input is kept in %s\n", artifact.c_str());
    }
}

void endOfAbort(int) {
    keepCurrent();
    std::_Exit(1);
}

void tryInput(Bytes input) {
    current = std::move(input);
    // Memory that ends where the input does, for reads beyond it to be seen.
    const auto exact = std::make_unique<std::uint8_t[]>(current.size());
    std::copy(current.begin(), current.end(), exact.get());
    LLVMFuzzerTestOneInput(exact.get(), current.size());
}

/// Damages inputs the way that files are damaged and attacked: bits, bytes, lengths, pieces that
/// are lost, doubled or of another file.
class Damage {
  public:
    explicit Damage(const std::vector<Bytes>& seeds) : _seeds(seeds) {}

    Bytes next() {
        Bytes bytes = _seeds.empty() ? noise() : _seeds[below(_seeds.size())];
        // As often one damage as two, three or four.
        for (std::size_t count = 1 + below(4); count > 0; --count)
            harm(bytes);
        return bytes;
    }

  private:
    std::size_t below(std::size_t end) { return _random() % end; }
    std::uint8_t byte() { return static_cast<std::uint8_t>(_random()); }

    Bytes noise() {
        Bytes bytes(below(200));
        for (std::uint8_t& each : bytes)
            each = byte();
        return bytes;
    }

    void harm(Bytes& bytes) {
        if (bytes.empty())
            bytes.push_back(byte());
        const std::size_t place = below(bytes.size());
        const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(place);
        const auto piece = [&](std::size_t most) {
            return at +
                   static_cast<std::ptrdiff_t>(1 + below(std::min(most, bytes.size() - place)));
        };
        switch (below(8)) {
        case 0:
            *at ^= static_cast<std::uint8_t>(1U << below(8));
            break;
        case 1:
            *at = byte();
            break;
        case 2: // the ends of what counts and lengths can be
            for (std::size_t k = 0, count = std::size_t{1} << below(4); k < count; ++k)
                if (place + k < bytes.size())
                    bytes[place + k] = _edges[below(_edges.size())];
            break;
        case 3:
            bytes.erase(at, piece(16));
            break;
        case 4: {
            const Bytes copy(at, piece(64));
            bytes.insert(at, copy.begin(), copy.end());
            break;
        }
        case 5:
            bytes.insert(at, byte());
            break;
        case 6: // the end of another one
            if (!_seeds.empty()) {
                const Bytes& other = _seeds[below(_seeds.size())];
                const std::size_t from = below(other.size() + 1);
                bytes.erase(at, bytes.end());
                bytes.insert(bytes.end(), other.begin() + static_cast<std::ptrdiff_t>(from),
                             other.end());
            }
            break;
        default:
            if (below(4) == 0)
                bytes.erase(at, bytes.end());
            else
                std::swap(*at, bytes[below(bytes.size())]);
        }
    }

    static constexpr std::array<std::uint8_t, 8> _edges{0x00, 0x01, 0x7f, 0x80,
                                                        0x81, 0xfe, 0xff, 0x10};

    const std::vector<Bytes>& _seeds;
    std::mt19937 _random{1};
};

void readSeeds(const std::filesystem::path& path, std::vector<Bytes>& seeds) {
    // In the order of their names, so that every run is the same.
    std::vector<std::filesystem::path> files{path};
    if (std::filesystem::is_directory(path)) {
        files.clear();
        for (const auto& entry : std::filesystem::directory_iterator(path))
            files.push_back(entry.path());
        std::sort(files.begin(), files.end());
    }
    for (const auto& file : files) {
        std::ifstream stream(file, std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(stream),
                           std::istreambuf_iterator<char>());
    }
}

} // namespace

int main(int argc, char** argv) {
    std::size_t runs = 0;
    std::vector<Bytes> seeds;
    for (int k = 1; k < argc; ++k) {
        const std::string_view argument = argv[k];
        if (argument.starts_with("-runs="))
            runs = std::strtoull(argv[k] + 6, nullptr, 10);
        else if (argument.starts_with("-artifact_prefix="))
            artifact = std::string(argument.substr(17)) + artifact;
        else
            readSeeds(argv[k], seeds);
    }
    std::signal(SIGABRT, endOfAbort);
    if (__sanitizer_set_death_callback)
        __sanitizer_set_death_callback(keepCurrent);
    for (const Bytes& seed : seeds)
        tryInput(seed);
    Damage damage(seeds);
    for (std::size_t k = 0; k < runs; ++k)
        tryInput(damage.next());
    std::cout << seeds.size() << " seeds and " << runs << " damaged ones\n";
}
