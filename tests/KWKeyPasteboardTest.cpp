#include "KeyCommandsTestSupport.h"

#include <QMimeData>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <utility>

namespace {

const QString ownType = QStringLiteral("application/x-kwbase-keys");

} // namespace

using KWKeyPasteboardTest = KWKeyCommandsTest;

// --- The clipboard.

TEST_F(KWKeyPasteboardTest, CopiedKeysArePastedAtTheCurrentTime) {
    select({4, 2});
    EXPECT_TRUE(commands.copy());
    EXPECT_EQ(clipboardText(), "2\t1\n4\t2\n");
    view->setCurrentTime(5.5f);
    EXPECT_TRUE(commands.canPaste());
    expectStep("Paste Keys", [&] { return commands.paste(); });
    EXPECT_EQ(times(), (std::vector<float>{1, 2, 4, 5.5f, 7.5f, 8}));
    EXPECT_EQ(selection(), (std::vector<float>{5.5f, 7.5f}));
    EXPECT_EQ(recordAt(7.5f), recordAt(4));
    view->setCurrentTime(6);
    expectStep("Paste Keys", [&] { return commands.paste(); });
    EXPECT_EQ(times(), (std::vector<float>{1, 2, 4, 5.5f, 6, 7.5f, 8}));
    EXPECT_EQ(valueAt(8), 2) << "a key in the way is replaced";
    commands.selectAll();
    commands.deleteKeys();
    expectStep("Paste Keys", [&] { return commands.pasteInPlace(); });
    EXPECT_EQ(times(), (std::vector<float>{2, 4}));
}

TEST_F(KWKeyPasteboardTest, TheFirstPastedKeyIsAtTheCurrentTimeToTheBit) {
    select({1, 2});
    commands.copy();
    // Next to a frame.
    const float time = std::nextafter(5.25f, 6.0f);
    view->setCurrentTime(time);
    EXPECT_TRUE(commands.paste());
    EXPECT_EQ(selection(), (std::vector<float>{time, 6.25f}));
}

TEST_F(KWKeyPasteboardTest, CutKeysAreGoneAndPastedElsewhere) {
    select({2});
    expectStep("Cut Keys", [&] { return commands.cut(); });
    EXPECT_EQ(times(), (std::vector<float>{1, 4, 8}));
    const auto other = std::make_shared<KWKeyFramedChannel>();
    view->setPrimaryChannel(other);
    view->setCurrentTime(-1);
    EXPECT_TRUE(commands.paste());
    EXPECT_EQ(other->valueForKeyframe(KWTime(-1)), 1);
    EXPECT_EQ(selection(), std::vector<float>{-1});
}

TEST_F(KWKeyPasteboardTest, PastingKeepsEveryBit) {
    channel->removeAllKeyframes();
    const HJHermiteParam odd{kwNaN, -0.0f, kwInfinity, {1, -0.0f, 1e-45f, 4, 5, 6}};
    set(std::bit_cast<float>(0xffc12345u), KWKeyFramedChannel::hermiteDataFrom(&odd), -0.0f);
    set(-0.0f, oddRecord(7), 0.1f);
    set(1e-45f, oddRecord(0), 3e38f);
    set(-kwInfinity, oddRecord(1000), 1e-45f);
    const std::string before = contents();
    commands.selectAll();
    ASSERT_TRUE(commands.copy());
    const auto other = std::make_shared<KWKeyFramedChannel>();
    view->setPrimaryChannel(other);
    EXPECT_TRUE(commands.pasteInPlace());
    EXPECT_EQ(contentsOf(*other), before);
    other->removeAllKeyframes();
    view->setCurrentTime(-0.0f);
    EXPECT_TRUE(commands.paste());
    EXPECT_EQ(contentsOf(*other), before);
}

TEST_F(KWKeyPasteboardTest, ValuesAreTakenOverBetweenUnitsAsTheyWereShown) {
    const Centimeters centimeters;
    setUnit(KWUnitTypeLength);
    set(0.05f, 2);
    select({2});
    commands.copy();
    EXPECT_EQ(clipboardText(), "2\t5\n");
    const auto angle = std::make_shared<KWKeyFramedChannel>();
    angle->setUnitType(KWUnitTypeAngle);
    view->setPrimaryChannel(angle);
    EXPECT_TRUE(commands.pasteInPlace());
    EXPECT_FLOAT_EQ(angle->convertValueToUserUnit(angle->valueForKeyframe(KWTime(2))), 5);
    setClipboardText("3\t90");
    EXPECT_TRUE(commands.pasteInPlace());
    EXPECT_FLOAT_EQ(angle->convertValueToUserUnit(angle->valueForKeyframe(KWTime(3))), 90);
}

TEST_F(KWKeyPasteboardTest, TablesOfSpreadsheetsArePasted) {
    view->setCurrentTime(10);
    for (const char* const text :
         {"1\t0.5\n1.5\t-2e1\n", "1;0.5\r\n1.5;-20\r\n", "1, 0.5\n1.5, -20",
          "  1   0.5\n\n1.5 -20 ", "Time\tValue\n1\t0.5\n1.5\t-20", "1.5\t-20\r1\t0.5\r"}) {
        setClipboardText(text);
        EXPECT_TRUE(commands.canPaste());
        EXPECT_TRUE(commands.paste()) << text;
        EXPECT_EQ(valueAt(10), 0.5f) << text;
        EXPECT_EQ(valueAt(10.5f), -20) << text;
        EXPECT_EQ(recordAt(10), KWKeyFramedChannel::hermiteData());
        EXPECT_EQ(channel->keyframeCount(), 6u);
        EXPECT_TRUE(commands.deleteKeys());
    }
}

TEST_F(KWKeyPasteboardTest, TextThatIsNoTableIsRefused) {
    for (const auto& [text, line] : std::vector<std::pair<const char*, const char*>>{
             {"", ""},
             {"\n \n", ""},
             {"hello", "Line 1"},
             {"1\t2\nhello\t3", "Line 2"},
             {"1\t2\n\n3", "Line 3"},
             {"1\t2\t3", "Line 1"},
             {"1,5\t2,5", "Line 1"},
             {"Time\tValue", "Line 1"},
             {"Time\tValue\nTime\tValue\n1\t2", "Line 2"},
             {"1\t1e39", "Line 1"},
             {"nan\t1", "Line 1"},
             {"1\t2\ninf\t1", "Line 2"},
             {"1\t2 cm", "Line 1"}}) {
        setClipboardText(text);
        expectRefused([&] { return commands.paste(); });
        EXPECT_TRUE(commands.fault().contains(QLatin1String(line))) << text;
    }
    auto* const other = new QMimeData;
    other->setData(QStringLiteral("application/x-other"), "1\t2");
    QGuiApplication::clipboard()->setMimeData(other);
    EXPECT_FALSE(commands.canPaste());
    expectRefused([&] { return commands.paste(); });
}

TEST_F(KWKeyPasteboardTest, DamagedKeysAreRefused) {
    commands.selectAll();
    const QByteArray good = commands.mimeData()->data(ownType);
    const auto paste = [&](const QByteArray& bytes) {
        QMimeData data;
        data.setData(ownType, bytes);
        return commands.pasteMimeDataInPlace(data);
    };
    for (int length = 0; length < good.size(); ++length)
        expectRefused([&] { return paste(good.first(length)); });
    expectRefused([&] { return paste(good + 'x'); });
    // The number of keys, the length of the first shape, the first time.
    for (const int at : {16, 32, 20}) {
        QByteArray bad = good;
        bad.replace(at, 4, QByteArray::fromHex("ffffff7f"));
        expectRefused([&] { return paste(bad); });
    }
    QByteArray later = good;
    later[8] = 2;
    expectRefused([&] { return paste(later); });
    EXPECT_TRUE(commands.fault().contains(QStringLiteral("version")));
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        QByteArray bad = good;
        for (int k = 0; k < 3; ++k)
            bad[static_cast<int>(random() % static_cast<unsigned>(bad.size()))] =
                static_cast<char>(random());
        paste(bad);
        for (const float time : times())
            ASSERT_TRUE(std::isfinite(time));
    }
}

TEST_F(KWKeyPasteboardTest, PastingWhereThereIsNoTimeIsRefused) {
    select({1, 8});
    commands.copy();
    view->setCurrentTime(kwNaN);
    expectRefused([&] { return commands.paste(); });
    view->setCurrentTime(std::numeric_limits<float>::max());
    select({});
    set(0, std::numeric_limits<float>::max());
    setClipboardText("0\t0\n3e38\t1");
    expectRefused([&] { return commands.paste(); });
}
