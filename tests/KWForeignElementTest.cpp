#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWKeyedArchiver.h>

#include <apps/kwedit/KWEditDocument.h>
#include <gtest/gtest.h>
#include <tests/EditTestSupport.h>

#include <QTest>

namespace {

QString goldenPath(const char* name) {
    return QDir(QString::fromLocal8Bit(std::getenv("KWBASE_TEST_DATA")) + QStringLiteral("/golden"))
        .filePath(QLatin1String(name));
}

QByteArray bytesOf(const KWEditDocument& document, KWDocument::Form form) {
    const KWData data = document.model().data(form);
    return {reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size())};
}

} // namespace

TEST(KWForeignElement, ChannelsOfAnotherProgramsObjectsAreShownAndEditedWithUndo) {
    for (const char* const name :
         {"lamp-keyed-binary.kwdoc", "lamp-keyed-xml.kwdoc", "lamp-little.archive"}) {
        SCOPED_TRACE(name);
        KWEditDocument document;
        document.setAutosaveFolder({});
        QString error;
        ASSERT_TRUE(document.open(goldenPath(name), &error)) << error.toStdString();
        const auto shown = document.channelElements();
        ASSERT_EQ(shown.size(), 1U);
        EXPECT_EQ(shown.front()->name(), "Lamp ü");
        ASSERT_NE(shown.front()->channelArray(), nullptr);
        EXPECT_EQ(shown.front()->channelArray()->channelEnumerator().size(), 3U);

        const auto before = bytesOf(document, document.form());
        // As it is written when nobody stands in for anything.
        const auto plain = KWDocument::open(goldenPath(name).toStdString());
        EXPECT_EQ(document.model().data(document.form()), plain.data());
        const auto glow = std::dynamic_pointer_cast<KWKeyFramedChannel>(
            KWDocument::placeAt(document.model().channels(), "glow").channel);
        ASSERT_NE(glow, nullptr);
        glow->setValueForKeyframe(5, KWTime(3));
        QTest::qWait(1);
        EXPECT_TRUE(document.isModified());
        document.undo();
        QTest::qWait(1);
        EXPECT_EQ(bytesOf(document, document.form()), before);
        EXPECT_FALSE(document.isModified());
    }
}

TEST(KWForeignElement, AChannelIsReplacedThroughTheDocumentAndPutBack) {
    KWEditDocument document;
    document.setAutosaveFolder({});
    ASSERT_TRUE(document.open(goldenPath("lamp-keyed-binary.kwdoc")));
    const auto before = bytesOf(document, KWDocument::Form::binary);
    const auto glow = KWDocument::placeAt(document.model().channels(), "glow").channel;
    KWChannelOwner* const owner = glow->owner();
    ASSERT_NE(owner, nullptr);
    const auto fixed = std::make_shared<KWConstantChannel>("fixed");
    EXPECT_TRUE(owner->replaceChannelWith(glow, fixed));
    EXPECT_EQ(KWDocument::placeAt(document.model().channels(), "glow").channel, fixed);
    EXPECT_EQ(fixed->owner(), owner);
    document.undo();
    EXPECT_EQ(bytesOf(document, KWDocument::Form::binary), before);
    document.redo();
    EXPECT_EQ(KWDocument::placeAt(document.model().channels(), "glow").channel, fixed);
    EXPECT_FALSE(owner->replaceChannelWith(glow, std::make_shared<KWConstantChannel>("other")));
}

TEST(KWForeignElement, AnArrayAGroupOrAChannelAloneIsAnElementToo) {
    const Folder folder;
    const auto channel = std::make_shared<KWKeyFramedChannel>("alone");
    channel->setValueForKeyframe(1, KWTime(2));
    const auto group = std::make_shared<KWChannelGroup>("Group");
    group->addChannel(std::make_shared<KWConstantChannel>("grouped"));
    const auto array = std::make_shared<KWChannelArray>();
    array->addChannel(std::make_shared<KWConstantChannel>("listed"));
    for (const std::shared_ptr<KWObject>& root :
         {std::shared_ptr<KWObject>(channel), std::shared_ptr<KWObject>(group),
          std::shared_ptr<KWObject>(array)}) {
        const QString path = folder.path("root.kwdoc");
        KWKeyedArchiver::archiveRootObjectToFile(root, path.toStdString());
        KWEditDocument document;
        document.setAutosaveFolder({});
        ASSERT_TRUE(document.open(path));
        const auto shown = document.channelElements();
        ASSERT_EQ(shown.size(), 1U);
        EXPECT_EQ(shown.front()->channelArray()->channelEnumerator().size(), 1U);
        EXPECT_FALSE(shown.front()->name().empty());
        EXPECT_EQ(bytesOf(document, KWDocument::Form::binary), contentsOf(path));
        const auto old = shown.front()->channelArray()->channelEnumerator().front();
        EXPECT_TRUE(old->owner()->replaceChannelWith(old, std::make_shared<KWConstantChannel>()));
        EXPECT_NE(shown.front()->channelArray()->channelEnumerator().front(), old);
        document.undo();
        EXPECT_EQ(shown.front()->channelArray()->channelEnumerator().front(), old);
        EXPECT_EQ(bytesOf(document, KWDocument::Form::binary), contentsOf(path));
    }
}
