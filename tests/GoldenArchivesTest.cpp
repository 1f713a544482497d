#include "GoldenLamp.h"
#include "GoldenWave.h"
#include "Thoroughness.h"

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

constexpr char swellText[] = "0.5*LN(t + 4)";

KWArchiveValue keyedWave() {
    return waveDocument(swellText);
}

void expectKeyedWave(const KWArchiveValue& root) {
    expectWave(root, swellText);
}

struct Golden {
    const char* name;
    Format format;
    KWArchiveValue (*document)();
    void (*expect)(const KWArchiveValue&);
};
constexpr Golden files[] = {{"lamp-keyed-binary.kwdoc", Format::binary, lampDocument, expectLamp},
                            {"lamp-keyed-xml.kwdoc", Format::xml, lampDocument, expectLamp},
                            {"wave-keyed-binary.kwdoc", Format::binary, keyedWave, expectKeyedWave},
                            {"wave-keyed-xml.kwdoc", Format::xml, keyedWave, expectKeyedWave}};

} // namespace

TEST(GoldenArchives, AreWrittenAsTheyAreStored) {
    kwRegisterElementClass();
    for (const auto& [name, format, document, expect] : files) {
        const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(document(), format);
        if (std::getenv("KWBASE_WRITE_GOLDEN") && !std::filesystem::exists(golden(name)))
            KWWriteFileAtomically(golden(name), bytes);
        EXPECT_TRUE(stringOf(bytes) == contentsOf(golden(name))) << name;
    }
}

TEST(GoldenArchives, ComeBackBitForBit) {
    kwRegisterElementClass();
    for (const Golden& file : files) {
        SCOPED_TRACE(file.name);
        file.expect(KWKeyedUnarchiver::unarchiveValueWithFile(golden(file.name)));
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
            "  assert r[1]==bytes.fromhex('3f000000bf8000003e800000')+bytes(24)\n"
            "  v=plistlib.load(open(sys.argv[1]+'/wave-keyed-%s.kwdoc'%name,'rb'))\n"
            "  o=v['$objects']\n"
            "  wave,buoy=[at(e) for e in at(v['$top']['root'])['NS.objects']]\n"
            "  assert [at(t) for t in at(wave['expressionTexts'])['NS.objects']]"
            "==['2*t+1','0.5*LN(t + 4)','']\n"
            "  assert 'expressionTexts' not in buoy\n",
            golden("")),
        0);
}

TEST(GoldenArchives, NothingCutOrFlippedBreaksTheReader) {
    kwRegisterElementClass();
    for (const Golden& file : files) {
        const KWData whole = dataOf(contentsOf(golden(file.name)));
        for (std::size_t place = 0; place < whole.size(); place += placeStep) {
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
