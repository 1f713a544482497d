#include "TestFiles.h"

#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWException.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>

#include <apps/common/KWElement.h>
#include <gtest/gtest.h>
#include <plist/plist.h>

#include <bit>
#include <cstdlib>

// One stored file for each form of archive, with every class in it. A file that no longer comes out
// as it is stored means that documents in the world would not either: a new form is a new file.
// KWBASE_WRITE_GOLDEN=1 writes files that are not there yet.

namespace {

using Format = KWPropertyList::Format;

std::filesystem::path golden(const std::string& name) {
    return std::filesystem::path(std::getenv("KWBASE_TEST_DATA")) / "golden" / name;
}

std::shared_ptr<KWElement> lamp() {
    auto element = std::make_shared<KWElement>("Lamp \u00fc");
    auto hue = channelWithNameInitialValueColor<KWConstantChannel>("hue", 0.1f, 3);
    hue->setUnitType(KWUnitTypeAngle);
    element->addChannelToGroupNamed(hue, "");
    auto glow = std::make_shared<KWKeyFramedChannel>("glow");
    HJHermiteParam shape;
    shape.tension = 0.5f;
    shape.bias = -1;
    shape.continuity = 0.25f;
    glow->setValueForKeyframe(1, KWTime(0));
    glow->setValueHermiteValueForKeyframe(-2.5f, KWKeyFramedChannel::hermiteDataFrom(&shape),
                                          KWTime(0.1f));
    glow->setValueForKeyframe(3e30f, KWTime(1000));
    glow->setRepeatMode(KWRepeatModePingPong);
    element->addChannelToGroupNamed(glow, "Light");
    auto dark = std::make_shared<KWKeyFramedChannel>("dark");
    dark->setKeyFrameChannelMode(KWKeyFrameModeStep);
    dark->setUnitType(KWUnitTypeLength);
    element->addChannelToGroupNamed(dark, "Light");
    element->channelArray()->addGroupWithName("Empty");
    return element;
}

KWArchiveValue document() {
    return KWArchiveValue::mutableArray({lamp()});
}

struct Golden {
    const char* name;
    Format format;
};
constexpr Golden files[] = {{"lamp-keyed-binary.kwdoc", Format::binary},
                            {"lamp-keyed-xml.kwdoc", Format::xml}};

std::uint32_t bits(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

} // namespace

TEST(GoldenArchives, AreWrittenAsTheyAreStored) {
    kwRegisterElementClass();
    for (const auto& [name, format] : files) {
        const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(document(), format);
        if (std::getenv("KWBASE_WRITE_GOLDEN") && !std::filesystem::exists(golden(name)))
            KWWriteFileAtomically(golden(name), bytes);
        EXPECT_TRUE(stringOf(bytes) == contentsOf(golden(name))) << name;
    }
}

TEST(GoldenArchives, ComeBackBitForBit) {
    kwRegisterElementClass();
    for (const auto& [name, format] : files) {
        const KWArchiveValue root = KWKeyedUnarchiver::unarchiveValueWithFile(golden(name));
        ASSERT_TRUE(root.array()) << name;
        const auto element =
            std::dynamic_pointer_cast<KWElement>(root.array()->elements.at(0).object());
        ASSERT_TRUE(element);
        EXPECT_EQ(element->name(), "Lamp \u00fc");
        const auto array = element->channelArray();
        const auto hue = array->channelAtIndexInGroup(0, KWUngroupedChannels);
        EXPECT_EQ(hue->isa().name(), "KWConstantChannel");
        EXPECT_EQ(bits(hue->valueForTime(std::nullopt)), bits(0.1f));
        EXPECT_EQ(hue->channelColorIndex(), 3);
        EXPECT_EQ(hue->unitType(), KWUnitTypeAngle);
        EXPECT_EQ(hue->owner(), element.get());
        ASSERT_EQ(array->channelGroupCount(), 2u);
        EXPECT_EQ(array->channelGroupAtIndex(1)->count(), 0u);
        const auto group = array->groupWithName("Light");
        const auto glow =
            std::dynamic_pointer_cast<KWKeyFramedChannel>(array->channelAtIndexInGroup(0, 0));
        ASSERT_TRUE(glow);
        EXPECT_EQ(glow->channelGroup(), group);
        const auto original = std::dynamic_pointer_cast<KWKeyFramedChannel>(
            lamp()->channelArray()->channels()->at(1));
        EXPECT_EQ(glow->allKeyframes(), original->allKeyframes());
        for (const KWTime key : original->allKeyframes()) {
            EXPECT_EQ(bits(glow->valueForKeyframe(key)), bits(original->valueForKeyframe(key)));
            EXPECT_EQ(glow->hermiteValueForKeyframe(key), original->hermiteValueForKeyframe(key));
        }
        for (float t = -3; t < 2010; t += 0.37f)
            EXPECT_EQ(bits(glow->valueForTime(t)), bits(original->valueForTime(t)));
    }
}

TEST(GoldenArchives, OthersReadThem) {
    const std::string binary = contentsOf(golden("lamp-keyed-binary.kwdoc"));
    const std::string xml = contentsOf(golden("lamp-keyed-xml.kwdoc"));
    plist_t lists[2] = {};
    plist_from_bin(binary.data(), static_cast<std::uint32_t>(binary.size()), &lists[0]);
    plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &lists[1]);
    for (const plist_t list : lists) {
        ASSERT_NE(list, nullptr);
        const plist_t objects = plist_dict_get_item(list, "$objects");
        EXPECT_GT(plist_array_get_size(objects), 30u);
        plist_free(list);
    }
    EXPECT_EQ(
        runPython(
            "import plistlib,sys\n"
            "for name in ('binary','xml'):\n"
            "  v=plistlib.load(open(sys.argv[1]+'/lamp-keyed-%s.kwdoc'%name,'rb'))\n"
            "  o=v['$objects']\n"
            "  at=lambda u:o[u.data if name=='binary' else u['CF$UID']]\n"
            "  element=at(at(v['$top']['root'])['NS.objects'][0])\n"
            "  array=at(element['channelArray'])\n"
            "  groups=[at(g) for g in at(array['channelGroups'])['NS.objects']]\n"
            "  glow,dark=[at(c) for c in at(groups[0]['channels'])['NS.objects']]\n"
            "  assert at(glow['name'])=='glow' and glow['mode']==1 and glow['repeat']==2\n"
            "  assert at(glow['channelGroup']) is groups[0] and at(glow['owner']) is element\n"
            "  assert dark['unitType']==0 and dark['mode']==2\n"
            "  assert [at(k)['time'] for k in at(glow['keys'])['NS.objects']]"
            "==[0,0.10000000149011612,1000]\n"
            "  r=[at(h) for h in at(glow['hermiteValues'])['NS.objects']]\n"
            "  assert r[1]==bytes.fromhex('3f000000bf8000003e800000')+bytes(24)\n",
            golden("")),
        0);
}

TEST(GoldenArchives, NothingCutOrFlippedBreaksTheReader) {
    kwRegisterElementClass();
    for (const auto& [name, format] : files) {
        const KWData whole = dataOf(contentsOf(golden(name)));
        for (std::size_t place = 0; place < whole.size(); ++place) {
            std::vector<KWData> variants{
                KWData(whole.begin(), whole.begin() + std::ptrdiff_t(place))};
            for (const int bit : {0x01, 1 << (place % 7), 0x80}) {
                variants.push_back(whole);
                variants.back()[place] ^= static_cast<std::byte>(bit);
            }
            for (const KWData& bad : variants) {
                try {
                    const auto root = KWKeyedUnarchiver::unarchiveValueWithData(
                        bad, {.keepsUnknownObjects = true});
                    KWKeyedArchiver::archivedDataWithRootObject(root);
                } catch (const KWArchiveError& error) {
                    EXPECT_FALSE(error.reason().empty());
                } catch (const KWException& error) {
                    EXPECT_EQ(error.name(), "Key-value mismatch");
                }
            }
        }
    }
}
