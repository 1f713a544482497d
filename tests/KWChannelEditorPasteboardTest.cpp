#include "PanelTestSupport.h"

#include <stdexcept>

namespace {

class KWChannelEditorPasteboard : public PanelTest {};

/// Refuses every replacement.
class StubbornOwner final : public KWChannelOwner {
  public:
    ~StubbornOwner() override { resign(); }
};

/// A host's kind of channel that cannot be copied, or not any more.
class Fleeting final : public KWChannel {
  public:
    using KWChannel::KWChannel;
    std::shared_ptr<KWChannel> copy() const override {
        if (throws)
            throw std::runtime_error("no such class");
        return copies > 0 ? std::make_shared<Fleeting>(*this, copies - 1) : nullptr;
    }
    Fleeting(const Fleeting& other, int left) : KWChannel(other.name()), copies(left) {}
    Fleeting() = default;
    int copies = 1;
    static inline bool throws = false;
};

} // namespace

TEST_F(KWChannelEditorPasteboard, PastingIsEnabledOnlyAfterACopy) {
    clickRow(x);
    EXPECT_TRUE(isEnabled("copyButton"));
    EXPECT_FALSE(isEnabled("pasteButton"));
    click("copyButton");
    EXPECT_TRUE(isEnabled("pasteButton"));
    clickRow(lamp);
    EXPECT_FALSE(isEnabled("pasteButton"));
    clickRow(y);
    EXPECT_TRUE(isEnabled("pasteButton"));
}

TEST_F(KWChannelEditorPasteboard, PastingTwiceInsertsTwoDistinctCopies) {
    clickRow(x);
    click("copyButton");
    const auto copied = editor.copiedChannel();
    ASSERT_TRUE(copied);
    EXPECT_NE(copied, x);
    takeTold();
    clickRow(y);
    click("pasteButton");
    const auto first = std::dynamic_pointer_cast<KWKeyFramedChannel>(positionAt(1));
    clickRow(glow);
    click("pasteButton");
    const auto second = std::dynamic_pointer_cast<KWKeyFramedChannel>(
        lamp->channelArray()->ungroupedChannels()->at(0));
    ASSERT_TRUE(first && second);
    EXPECT_NE(first, second);
    EXPECT_NE(first, copied);
    EXPECT_EQ(editor.copiedChannel(), copied);
    EXPECT_EQ(editor.channelBeingEdited(), second);
    EXPECT_EQ(view()->primaryChannel(), second);
    EXPECT_EQ(first->name(), "y");
    EXPECT_EQ(second->name(), "glow");
    for (const auto& pasted : {first, second}) {
        EXPECT_EQ(pasted->allKeyframes(), x->allKeyframes());
        EXPECT_EQ(pasted->valueForTime(KWTime(2)), x->valueForTime(KWTime(2)));
    }
    first->removeAllKeyframes();
    EXPECT_EQ(second->keyframeCount(), 4U);
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::paste) + ", " + pairOf(KWChannelEdit::paste));
}

TEST_F(KWChannelEditorPasteboard, PastingIsUndone) {
    clickRow(x);
    click("copyButton");
    clickRow(y);
    click("pasteButton");
    EXPECT_NE(positionAt(1), y);
    manager->undo();
    EXPECT_EQ(positionAt(1), y);
    EXPECT_EQ(y->owner(), ball.get());
}

TEST_F(KWChannelEditorPasteboard, ACopyIsNotChangedByWhatHappensToItsOriginal) {
    clickRow(x);
    click("copyButton");
    x->removeAllKeyframes();
    clickRow(glow);
    click("pasteButton");
    EXPECT_EQ(
        std::dynamic_pointer_cast<KWKeyFramedChannel>(editor.channelBeingEdited())->keyframeCount(),
        4U);
}

TEST_F(KWChannelEditorPasteboard, ACopyOfNothingEnablesThePasteThatDoesNothing) {
    clickRow(x);
    click("copyButton");
    clickRow(lamp);
    editor.copyChannel();
    EXPECT_EQ(editor.copiedChannel(), nullptr);
    EXPECT_TRUE(isEnabled("pasteButton"));
    takeTold();
    click("pasteButton");
    EXPECT_EQ(takeTold(), "");
    clickRow(y);
    EXPECT_FALSE(isEnabled("pasteButton"));
}

TEST_F(KWChannelEditorPasteboard, AnOwnerThatRefusesLeavesEverythingAsItWas) {
    StubbornOwner owner;
    clickRow(x);
    click("copyButton");
    clickRow(y);
    y->setOwner(&owner);
    takeTold();
    choose("channelTypePU", 0);
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::type));
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 3);
    click("pasteButton");
    EXPECT_EQ(positionAt(1), y);
    EXPECT_EQ(editor.channelBeingEdited(), y);
    EXPECT_EQ(view()->primaryChannel(), y);
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWChannelEditorPasteboard, AnOwnerThatIsGoneLeavesEverythingAsItWas) {
    clickRow(x);
    click("copyButton");
    clickRow(y);
    {
        StubbornOwner owner;
        y->setOwner(&owner);
    }
    takeTold();
    choose("channelTypePU", 1);
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 3);
    click("pasteButton");
    EXPECT_EQ(positionAt(1), y);
    EXPECT_EQ(editor.channelBeingEdited(), y);
    EXPECT_EQ(takeTold(), "");
}

TEST_F(KWChannelEditorPasteboard, AChannelThatCannotBeCopiedAnyMoreIsNotPasted) {
    const auto fleeting = std::make_shared<Fleeting>();
    ball->addChannelToGroupNamed(fleeting);
    editor.channelStructChangedCallback(KWNotification("any", ball.get()));
    clickRow(fleeting);
    EXPECT_EQ(editor.optionsView(), nullptr);
    click("copyButton");
    ASSERT_TRUE(editor.copiedChannel());
    clickRow(y);
    takeTold();
    click("pasteButton");
    EXPECT_EQ(positionAt(1), y);
    Fleeting::throws = true;
    click("pasteButton");
    Fleeting::throws = false;
    EXPECT_EQ(log.lines.back(), "An action of a panel has failed: no such class");
    EXPECT_EQ(positionAt(1), y);
    EXPECT_EQ(editor.channelBeingEdited(), y);
    EXPECT_EQ(takeTold(), "");
}
