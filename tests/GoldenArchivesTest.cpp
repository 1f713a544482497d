#include "GoldenLamp.h"

#include <KWFoundation/KWException.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstdlib>

// One stored file for each form of archive, with every class in it. A file that no longer comes out
// as it is stored means that documents in the world would not either: a new form is a new file.
// KWBASE_WRITE_GOLDEN=1 writes files that are not there yet.

namespace {

using Format = KWPropertyList::Format;

struct Golden {
    const char* name;
    Format format;
};
constexpr Golden files[] = {{"lamp-keyed-binary.kwdoc", Format::binary},
                            {"lamp-keyed-xml.kwdoc", Format::xml}};

} // namespace

TEST(GoldenArchives, AreWrittenAsTheyAreStored) {
    kwRegisterElementClass();
    for (const auto& [name, format] : files) {
        const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(lampDocument(), format);
        if (std::getenv("KWBASE_WRITE_GOLDEN") && !std::filesystem::exists(golden(name)))
            KWWriteFileAtomically(golden(name), bytes);
        EXPECT_TRUE(stringOf(bytes) == contentsOf(golden(name))) << name;
    }
}

TEST(GoldenArchives, ComeBackBitForBit) {
    kwRegisterElementClass();
    for (const auto& [name, format] : files) {
        const KWArchiveValue root = KWKeyedUnarchiver::unarchiveValueWithFile(golden(name));
        expectLamp(root);
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
