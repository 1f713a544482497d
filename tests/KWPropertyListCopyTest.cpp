#include "PropertyListText.h"
#include "RandomPropertyList.h"
#include "TestFiles.h"

#include <apps/common/KWPropertyListCopy.h>
#include <gtest/gtest.h>

using Format = KWPropertyList::Format;

TEST(KWPropertyListCopy, EqualValuesOfXMLBecomeOne) {
    const KWData xml = dataOf("<plist><array><string>a</string><string>a</string><real>0.5</real>"
                              "<real>0.5</real><data>YQ==</data><data>YQ==</data><array/><array/>"
                              "<dict><key>a</key><true/></dict><true/></array></plist>");
    const KWPropertyList list = KWPropertyList::parse(xml);
    const KWPropertyList copy = kwCopyPropertyList(list);
    EXPECT_EQ(textOf(copy), textOf(list));
    // The string, the number, the bytes and true; three containers, and what holds them.
    EXPECT_EQ(copy.nodeCount(), 8U);
    EXPECT_EQ(list.nodeCount(), 13U);
}

TEST(KWPropertyListCopy, RandomListsAreTheSameAfterwards) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        const KWPropertyList list = RandomPropertyList(seed, {}).make();
        EXPECT_EQ(textOf(kwCopyPropertyList(list)), textOf(list)) << seed;
    }
}
