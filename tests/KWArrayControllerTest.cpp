#include "PropertyTestObjects.h"

#include <KWBase/KWConstantChannel.h>
#include <KWDesktop/KWArrayController.h>
#include <KWDesktop/KWPropertyObserving.h>

#include <gtest/gtest.h>

TEST(KWArrayController, TellsOfEachChangeOfItsList) {
    KWArrayController list;
    PropertyNotes notes;
    KWAddObserverForKeyPathOptionsContext(list, notes, "arrangedObjects", 0, nullptr);
    const auto one = std::make_shared<KWConstantChannel>("one");
    const auto two = std::make_shared<KWConstantChannel>("two");
    list.setContent({one, nullptr});
    list.addObject(two);
    list.addObject(nullptr);
    EXPECT_EQ(list.arrangedObjects(), (KWArrayController::Objects{one, two}));
    EXPECT_EQ(notes.notes.size(), 2U);
    list.removeObject(std::make_shared<KWConstantChannel>("three"));
    list.removeObject(nullptr);
    EXPECT_EQ(notes.notes.size(), 2U);
    list.removeObject(one);
    EXPECT_EQ(list.arrangedObjects(), KWArrayController::Objects{two});
    EXPECT_EQ(notes.notes.size(), 3U);
}

TEST(KWArrayController, ShowsItsListToQt) {
    KWArrayController list;
    const auto one = std::make_shared<KWConstantChannel>("one");
    list.setContent({one});
    const QVariantList objects = KWValueForKeyPath(&list, "arrangedObjects").toList();
    ASSERT_EQ(objects.size(), 1);
    EXPECT_EQ(KWChannelFromVariant(objects.front()), one);
}
