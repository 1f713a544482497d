#pragma once

#include "ArchiveTestClasses.h"
#include "TestFiles.h"

#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnknownObject.h>

#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <random>

inline constexpr KWUnarchivingOptions keeping{.keepsUnknownObjects = true};

/// Expects that an archive is refused, with a message that has that part.
template <class Unarchiver>
void expectErrorOf(const KWData& bytes, KWArchiveError::Kind kind, const std::string& part,
                   KWUnarchivingOptions options) {
    try {
        Unarchiver::unarchiveValueWithData(bytes, options, "sample.doc");
        FAIL() << "read without an error";
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), kind) << error.what();
        EXPECT_NE(std::string(error.what()).find(part), std::string::npos) << error.what();
        EXPECT_EQ(error.file(), "sample.doc");
    }
}

/// Expects that an object comes from a file, and the reason when none does. `write` puts a root
/// there.
template <class Unarchiver>
void expectObjectOfFileOrReason(
    const std::function<void(const KWArchiveValue&, const std::filesystem::path&)>& write) {
    using Kind = KWArchiveError::Kind;
    const TemporaryFolder folder;
    const auto path = folder.path() / "part.archive";
    const auto read = [&](KWUnarchivingOptions options = {}) {
        return Unarchiver::unarchiveObjectWithFile(path, options);
    };
    const auto expectFailure = [&](Kind kind, const std::string& reason) {
        try {
            read();
            FAIL() << "read without an error";
        } catch (const KWArchiveError& error) {
            EXPECT_EQ(error.kind(), kind);
            EXPECT_EQ(error.reason(), reason);
            EXPECT_EQ(error.file(), path.string());
        }
    };
    expectFailure(Kind::cannotRead, "No such file or directory");
    {
        const Registration known(Part::classObject());
        write(std::make_shared<Part>("lid"), path);
        const auto part = std::dynamic_pointer_cast<Part>(read());
        ASSERT_TRUE(part);
        EXPECT_EQ(part->name, "lid");
    }
    EXPECT_THROW(read(), KWArchiveError);
    EXPECT_TRUE(std::dynamic_pointer_cast<KWUnknownObject>(read(keeping)));
    write("text", path);
    expectFailure(Kind::damaged, "expected an object, found a string");
    write(nullptr, path);
    expectFailure(Kind::damaged, "expected an object, found nil");
}

/// Parts in parts, all in the first, with peers and other references anywhere. Each is named after
/// its place.
inline std::vector<std::shared_ptr<Part>> randomParts(unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    std::vector<std::shared_ptr<Part>> all;
    const unsigned count = 1 + below(40);
    for (unsigned k = 0; k < count; ++k) {
        all.push_back(std::make_shared<Part>(std::to_string(k)));
        all[k]->gain = std::bit_cast<float>(below(0x7f800000U));
        for (unsigned m = below(5); m > 0; --m) {
            all[k]->numbers.push_back(std::bit_cast<float>(below(0x7f800000U)));
            all[k]->moments.push_back(static_cast<float>(below(1000)));
            all[k]->records.resize(all[k]->records.size() + Part::recordSize,
                                   static_cast<std::byte>(m));
        }
        if (k > 0)
            all[below(k)]->parts.push_back(all[k]);
    }
    for (unsigned k = 0; k < count; ++k) {
        all[k]->peer = all[below(count)];
        if (below(3) == 0)
            all[k]->parts.push_back(all[below(count)]);
        if (below(3) == 0)
            all[k]->other = KWArchiveValue::backReference(all[below(count)]);
    }
    return all;
}

/// Compares what was read with the parts that were written.
inline void expectParts(const std::shared_ptr<Part>& root,
                        const std::vector<std::shared_ptr<Part>>& written) {
    std::vector<std::shared_ptr<Part>> seen(written.size());
    const std::function<void(const std::shared_ptr<Part>&)> compare =
        [&](const std::shared_ptr<Part>& part) {
            const std::size_t k = std::stoul(part->name);
            if (seen[k]) {
                EXPECT_EQ(seen[k], part);
                return;
            }
            seen[k] = part;
            const Part& original = *written[k];
            EXPECT_EQ(std::bit_cast<std::uint32_t>(part->gain),
                      std::bit_cast<std::uint32_t>(original.gain));
            EXPECT_EQ(part->numbers, original.numbers);
            EXPECT_EQ(part->moments, original.moments);
            EXPECT_EQ(part->records, original.records);
            EXPECT_EQ(part->peer.lock()->name, original.peer.lock()->name);
            EXPECT_EQ(part->other.isNil(), original.other.isNil());
            ASSERT_EQ(part->parts.size(), original.parts.size());
            for (std::size_t m = 0; m < part->parts.size(); ++m) {
                EXPECT_EQ(part->parts[m]->name, original.parts[m]->name);
                compare(part->parts[m]);
            }
        };
    ASSERT_TRUE(root);
    compare(root);
    for (const auto& part : seen)
        EXPECT_TRUE(part);
}
