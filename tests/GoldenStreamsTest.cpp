#include "GoldenLamp.h"
#include "GoldenWave.h"
#include "StreamBuilder.h"
#include "Thoroughness.h"

#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWException.h>
#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWUnarchiver.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <tuple>

// Stored sequential archives of every class version, each from a machine of either byte order. A
// file that no longer reads as it does here means that documents in the world would not either.
// KWBASE_WRITE_GOLDEN=1 writes files that are not there yet.

namespace {

using Chain = StreamBuilder::Chain;
using Versions = std::map<std::string, std::int32_t>;

Chain channelClass(const char* name, int version, int channelVersion) {
    return {{name, version}, {"KWChannel", channelVersion}, {"NSObject", 0}};
}

/// `group` is its label, or 0 for none.
void putChannelPart(StreamBuilder& it, const char* name, int color, int version, int group = 0,
                    int unitType = KWUnitTypeNone) {
    it.string(name);
    it.i(color);
    if (version >= 1 && group != 0)
        it.again(group);
    else if (version >= 1)
        it.nil();
    if (version >= 2)
        it.i(unitType);
}

void putTimes(StreamBuilder& it, const std::vector<float>& times) {
    it.list(static_cast<int>(times.size()), [&] {
        for (const float time : times)
            it.object({{"KWTime", 0}, {"NSObject", 0}}, [&] { it.f(time); });
    });
}

void putNumbers(StreamBuilder& it, const std::vector<float>& values) {
    it.list(static_cast<int>(values.size()), [&] {
        for (const float value : values)
            it.number(value);
    });
}

void putGlow(StreamBuilder& it, int group) {
    it.object(channelClass("KWKeyFramedChannel", 1, 2), [&] {
        putChannelPart(it, "glow", 0, 2, group);
        putTimes(it, {0, 0.1F, 1000});
        putNumbers(it, {1, -2.5F, 3e30F});
        it.i(KWKeyFrameModeHermite);
        it.i(KWRepeatModePingPong);
        it.list(3, [&] {
            it.record({0, 0, 0, 0, 0, 0, 0, 0, 0});
            it.record({0.5F, -1, 0.25F, 0, 0, 0, 0, 0, 0});
            it.record({0, 0, 0, 0, 0, 0, 0, 0, 0});
        });
    });
}

void putDark(StreamBuilder& it, int group) {
    it.object(channelClass("KWKeyFramedChannel", 1, 2), [&] {
        putChannelPart(it, "dark", 0, 2, group, KWUnitTypeLength);
        putTimes(it, {});
        putNumbers(it, {});
        it.i(KWKeyFrameModeStep);
        it.i(KWRepeatModeNone);
        it.list(0, [] {});
    });
}

void putLamp(StreamBuilder& it) {
    const Chain group{{"KWChannelGroup", 0}, {"NSObject", 0}};
    it.list(1, [&] {
        it.object({{"KWElement", 0}, {"NSObject", 0}}, [&] {
            it.string("Lamp \u00fc");
            it.object({{"KWChannelArray", 1}, {"NSObject", 0}}, [&] {
                it.list(1, [&] {
                    it.object(channelClass("KWConstantChannel", 0, 2), [&] {
                        putChannelPart(it, "hue", 3, 2, 0, KWUnitTypeAngle);
                        it.f(0.1F);
                    });
                });
                it.list(2, [&] {
                    const int light = it.nextLabel();
                    it.object(group, [&] {
                        it.string("Light");
                        it.list(2, [&] {
                            putGlow(it, light);
                            putDark(it, light);
                        });
                    });
                    it.object(group, [&] {
                        it.string("Empty");
                        it.list(0, [] {});
                    });
                });
            });
        });
    });
}

/// `text` is what is printed of the expression; null for none.
void putAlgebricChannel(StreamBuilder& it, const char* name, int color, int unitType, int group,
                        const char* text) {
    it.object(channelClass("KWAlgebricChannel", 0, 2), [&] {
        putChannelPart(it, name, color, 2, group, unitType);
        it.object({{"KWAlgebricInterpreter", 0}, {"NSObject", 0}}, [&] {
            if (text)
                it.string(text);
            else
                it.nil();
            it.i(KWExpressionModeT);
        });
    });
}

/// `version` is that of KWElement, `swellText` as it is printed.
void putWave(StreamBuilder& it, int version, const char* swellText,
             const std::vector<std::string>& texts) {
    const Chain elementClass{{"KWElement", version}, {"NSObject", 0}};
    const Chain arrayClass{{"KWChannelArray", 1}, {"NSObject", 0}};
    it.list(2, [&] {
        it.object(elementClass, [&] {
            it.string("Wave");
            it.object(arrayClass, [&] {
                it.list(2, [&] {
                    it.object(channelClass("KWConstantChannel", 0, 2), [&] {
                        putChannelPart(it, "level", 2, 2);
                        it.f(0.5F);
                    });
                    putAlgebricChannel(it, "height", 0, KWUnitTypeLength, 0, "2*t+1");
                });
                it.list(1, [&] {
                    const int sea = it.nextLabel();
                    it.object({{"KWChannelGroup", 0}, {"NSObject", 0}}, [&] {
                        it.string("Sea");
                        it.list(2, [&] {
                            putAlgebricChannel(it, "swell", 4, KWUnitTypeNone, sea, swellText);
                            putAlgebricChannel(it, "calm", 0, KWUnitTypeNone, sea, nullptr);
                        });
                    });
                });
            });
            if (version >= 1)
                it.list(static_cast<int>(texts.size()), [&] {
                    for (const std::string& text : texts)
                        it.string(text);
                });
        });
        it.object(elementClass, [&] {
            it.string("Buoy");
            it.object(arrayClass, [&] {
                it.list(0, [] {});
                it.list(0, [] {});
            });
            if (version >= 1)
                it.nil();
        });
    });
}

void putWaveOfElementVersion1(StreamBuilder& it) {
    putWave(it, 1, "0.5*log(t+4)", {"2*t+1", "0.5*LN(t + 4)", ""});
}

void putWaveOfElementVersion0(StreamBuilder& it) {
    putWave(it, 0, "sin(t)*etp(t)", {});
}

void putChannelsOfVersion0(StreamBuilder& it) {
    it.list(2, [&] {
        for (const auto& [name, color, value] :
             {std::tuple("gain", 4, 0.1F), std::tuple("depth", 300, -2.0F)})
            it.object(channelClass("KWConstantChannel", 0, 0), [&] {
                putChannelPart(it, name, color, 0);
                it.f(value);
            });
    });
}

void putChannelOfVersion1(StreamBuilder& it) {
    const int group = it.nextLabel();
    it.object({{"KWChannelGroup", 0}, {"NSObject", 0}}, [&] {
        it.string("Light");
        it.list(1, [&] {
            it.object(channelClass("KWConstantChannel", 0, 1), [&] {
                putChannelPart(it, "hue", 3, 1, group);
                it.f(0.1F);
            });
        });
    });
}

void putKeyFramedChannelOfVersion0(StreamBuilder& it) {
    it.object(channelClass("KWKeyFramedChannel", 0, 1), [&] {
        putChannelPart(it, "glow", 1, 1);
        putTimes(it, {0, 0.1F, 1000});
        putNumbers(it, {1, -2.5F, 3e30F});
    });
}

void putArrayOfVersion0(StreamBuilder& it) {
    it.object({{"KWChannelArray", 0}, {"NSObject", 0}}, [&] {
        it.list(1, [&] {
            it.object(channelClass("KWConstantChannel", 0, 1), [&] {
                putChannelPart(it, "hue", 3, 1);
                it.f(0.1F);
            });
        });
    });
}

void expectHue(const KWChannel& hue) {
    EXPECT_EQ(hue.isa().name(), "KWConstantChannel");
    EXPECT_EQ(hue.name(), "hue");
    EXPECT_EQ(hue.channelColorIndex(), 3);
    EXPECT_EQ(hue.unitType(), KWUnitTypeNone);
    EXPECT_EQ(bits(hue.valueForTime(std::nullopt)), bits(0.1F));
}

void expectChannelsOfVersion0(const KWArchiveValue& root) {
    ASSERT_TRUE(root.array());
    ASSERT_EQ(root.array()->elements.size(), 2u);
    const auto channel = [&](std::size_t k) {
        return std::dynamic_pointer_cast<KWConstantChannel>(root.array()->elements[k].object());
    };
    ASSERT_TRUE(channel(0) && channel(1));
    EXPECT_EQ(channel(0)->name(), "gain");
    EXPECT_EQ(channel(0)->channelColorIndex(), 4);
    EXPECT_EQ(bits(channel(0)->valueForTime(std::nullopt)), bits(0.1F));
    EXPECT_EQ(channel(1)->name(), "depth");
    EXPECT_EQ(channel(1)->channelColorIndex(), 300);
    EXPECT_EQ(bits(channel(1)->valueForTime(std::nullopt)), bits(-2.0F));
    for (const std::size_t k : {0u, 1u}) {
        EXPECT_EQ(channel(k)->channelGroup(), nullptr);
        EXPECT_EQ(channel(k)->unitType(), KWUnitTypeNone);
    }
}

void expectChannelOfVersion1(const KWArchiveValue& root) {
    const auto group = std::dynamic_pointer_cast<KWChannelGroup>(root.object());
    ASSERT_TRUE(group);
    EXPECT_EQ(group->name(), "Light");
    ASSERT_EQ(group->count(), 1u);
    expectHue(*group->channels()->front());
    EXPECT_EQ(group->channels()->front()->channelGroup(), group);
}

void expectKeyFramedChannelOfVersion0(const KWArchiveValue& root) {
    const auto channel = std::dynamic_pointer_cast<KWKeyFramedChannel>(root.object());
    ASSERT_TRUE(channel);
    EXPECT_EQ(channel->name(), "glow");
    EXPECT_EQ(channel->channelColorIndex(), 1);
    EXPECT_EQ(channel->unitType(), KWUnitTypeNone);
    EXPECT_EQ(channel->keyFrameChannelMode(), KWKeyFrameModeHermite);
    EXPECT_EQ(channel->repeatMode(), KWRepeatModeNone);
    EXPECT_EQ(channel->allKeyframes(),
              (std::vector<KWTime>{KWTime(0), KWTime(0.1F), KWTime(1000)}));
    const float values[] = {1, -2.5F, 3e30F};
    ASSERT_EQ(channel->valueCount(), 3u);
    ASSERT_EQ(channel->hermiteCount(), 3u);
    for (std::uint32_t k = 0; k < 3; ++k) {
        EXPECT_EQ(bits(channel->valueForKeyframeAtIndex(k)), bits(values[k]));
        EXPECT_EQ(channel->hermiteValueForKeyframe(*channel->keyframeAtIndex(k)),
                  KWKeyFramedChannel::hermiteData());
    }
}

void expectArrayOfVersion0(const KWArchiveValue& root) {
    const auto array = std::dynamic_pointer_cast<KWChannelArray>(root.object());
    ASSERT_TRUE(array);
    ASSERT_EQ(array->channelCount(), 1u);
    expectHue(*array->channelAtIndexInGroup(0, KWUngroupedChannels));
    EXPECT_EQ(array->channelGroups(), nullptr);
    EXPECT_EQ(array->channelGroupCount(), 0u);
}

void expectWaveOfElementVersion1(const KWArchiveValue& root) {
    expectWave(root, "0.5*LN(t + 4)");
}

void expectWaveOfElementVersion0(const KWArchiveValue& root) {
    expectWave(root, "sin(t)*etp(t)");
}

struct Stream {
    std::string name;
    void (*put)(StreamBuilder&);
    void (*expect)(const KWArchiveValue&);
    Versions versions;
};

std::vector<Stream> streams() {
    return {{"lamp", putLamp, expectLamp, {{"KWElement", 0}}},
            {"wave", putWaveOfElementVersion1, expectWaveOfElementVersion1, {{"KWElement", 1}}},
            {"wave-element-0",
             putWaveOfElementVersion0,
             expectWaveOfElementVersion0,
             {{"KWElement", 0}}},
            {"channel-0", putChannelsOfVersion0, expectChannelsOfVersion0, {{"KWChannel", 0}}},
            {"channel-1", putChannelOfVersion1, expectChannelOfVersion1, {{"KWChannel", 1}}},
            {"keyframed-channel-0",
             putKeyFramedChannelOfVersion0,
             expectKeyFramedChannelOfVersion0,
             {{"KWChannel", 1}, {"KWKeyFramedChannel", 0}}},
            {"channel-array-0",
             putArrayOfVersion0,
             expectArrayOfVersion0,
             {{"KWChannel", 1}, {"KWChannelArray", 0}}}};
}

std::filesystem::path path(const Stream& stream, bool bigEndian) {
    return golden(stream.name + (bigEndian ? "-big" : "-little") + ".archive");
}

KWData stored(const Stream& stream, bool bigEndian) {
    return dataOf(contentsOf(path(stream, bigEndian)));
}

KWData archived(const KWArchiveValue& root, const Versions& versions) {
    KWArchiver archiver;
    for (const auto& [name, version] : versions)
        archiver.setVersionForClassName(version, name);
    archiver.encodeRootObject(root);
    return archiver.archiverData();
}

} // namespace

TEST(GoldenStreams, AreStoredAsAMachineOfEachByteOrderWritesThem) {
    for (const Stream& stream : streams()) {
        for (const bool bigEndian : {false, true}) {
            StreamBuilder builder(bigEndian);
            stream.put(builder);
            if (std::getenv("KWBASE_WRITE_GOLDEN") &&
                !std::filesystem::exists(path(stream, bigEndian)))
                KWWriteFileAtomically(path(stream, bigEndian), builder.bytes());
            EXPECT_TRUE(builder.bytes() == stored(stream, bigEndian)) << path(stream, bigEndian);
        }
    }
}

TEST(GoldenStreams, DocumentsAreWrittenAsTheyAreStored) {
    kwRegisterElementClass();
    const auto all = streams();
    EXPECT_TRUE(archived(lampDocument(), all[0].versions) == stored(all[0], false));
    EXPECT_TRUE(archived(waveDocument("0.5*LN(t + 4)"), {}) == stored(all[1], false));
    EXPECT_TRUE(archived(waveDocument("sin(t)*exp(t)"), all[2].versions) == stored(all[2], false));
}

TEST(GoldenStreams, ComeBackBitForBitInBothByteOrders) {
    kwRegisterElementClass();
    for (const Stream& stream : streams()) {
        for (const bool bigEndian : {false, true}) {
            SCOPED_TRACE(path(stream, bigEndian));
            const KWData bytes = stored(stream, bigEndian);
            KWUnarchiver it(bytes);
            EXPECT_EQ(it.isBigEndian(), bigEndian);
            stream.expect(it.decodeObject());
            EXPECT_TRUE(it.isAtEnd());
            for (const auto& [name, version] : stream.versions)
                EXPECT_EQ(it.versionForClassName(name), version) << name;
        }
    }
}

TEST(GoldenStreams, AreWrittenAgainByteForByteInTheVersionsTheyHad) {
    kwRegisterElementClass();
    for (const Stream& stream : streams())
        for (const bool bigEndian : {false, true})
            EXPECT_TRUE(archived(KWUnarchiver::unarchiveValueWithData(stored(stream, bigEndian)),
                                 stream.versions) == stored(stream, false))
                << path(stream, bigEndian);
}

TEST(GoldenStreams, AreWrittenAgainByteForByteByOneWhoKnowsNoClasses) {
    for (const Stream& stream : streams()) {
        const KWData bytes = stored(stream, false);
        EXPECT_TRUE(KWArchiver::archivedDataWithRootObject(KWUnarchiver::unarchiveValueWithData(
                        bytes, {.knowsNoClasses = true})) == bytes)
            << stream.name;
    }
}

TEST(GoldenStreams, NothingCutOrFlippedBreaksTheReader) {
    kwRegisterElementClass();
    const auto readAndWrite = [](const KWData& bad, KWUnarchivingOptions options) {
        try {
            const auto root = KWUnarchiver::unarchiveValueWithData(bad, options);
            KWArchiver::archivedDataWithRootObject(root);
        } catch (const KWArchiveError& error) {
            EXPECT_FALSE(error.reason().empty());
        } catch (const KWException& error) {
            EXPECT_EQ(error.name(), "Key-value mismatch");
        }
    };
    const KWLogHandler before = KWSetLogHandler([](std::string_view line) {
        EXPECT_TRUE(line == "Inconsistent Values/Keys pairs in channel" ||
                    line.starts_with("set err = "))
            << line;
    });
    for (const Stream& stream : streams()) {
        for (const bool bigEndian : {false, true}) {
            const KWData whole = stored(stream, bigEndian);
            for (std::size_t place = 0; place < whole.size(); place += placeStep) {
                std::vector<KWData> variants{
                    KWData(whole.begin(), whole.begin() + std::ptrdiff_t(place))};
                for (const int flip : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0xff}) {
                    variants.push_back(whole);
                    variants.back()[place] ^= static_cast<std::byte>(flip);
                }
                for (const KWData& bad : variants) {
                    readAndWrite(bad, {.keepsUnknownObjects = true});
                    readAndWrite(bad, {.knowsNoClasses = true});
                }
            }
        }
    }
    KWSetLogHandler(before);
}
