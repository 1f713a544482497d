#include <KWFoundation/KWUnarchiver.h>

#include <gtest/gtest.h>
#include <samples/Samples.h>
#include <tests/ArchiveBuilder.h>
#include <tests/DocumentTestSupport.h>
#include <tests/SequentialBytes.h>
#include <tests/TestFiles.h>

namespace {

using Form = KWDocument::Form;
constexpr Form forms[] = {Form::binary, Form::xml, Form::sequential};

std::vector<std::string> paths(const KWDocument& document) {
    std::vector<std::string> list;
    for (const KWDocument::Place& place : document.channels())
        list.push_back(place.path);
    return list;
}

using Strings = std::vector<std::string>;

/// All values of all channels as bits, those that cannot be evaluated left out.
std::vector<std::uint32_t> valueBits(const KWDocument& document) {
    std::vector<std::uint32_t> bits;
    for (const KWDocument::Place& place : document.channels())
        for (float time = -1; time < 12; time += 0.37F)
            bits.push_back(std::bit_cast<std::uint32_t>(place.channel->valueForTime(KWTime(time))));
    return bits;
}

/// A channel alone, as a big-endian machine writes it.
KWData bigEndianStream() {
    return bytesOf(bigEndianHeader +
                   "84 01 \"@\" 84 84 84 11 \"KWConstantChannel\" 00 84 84 09 \"KWChannel\" 02"
                   "84 84 08 \"NSObject\" 00 85"
                   "92 84 84 84 08 \"NSString\" 01 95 84 01 \"+\" 04 \"gain\" 86"
                   "84 01 \"i\" 81 012c 92 85 98 01 84 01 \"f\" 83 3f000000 86");
}

/// An archive of these values, one behind the other.
KWData streamOf(const std::vector<KWArchiveValue>& values) {
    KWArchiver archiver;
    for (const KWArchiveValue& value : values)
        archiver.encodeRootObject(value);
    return archiver.archiverData();
}

std::string reasonOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const KWArchiveError& error) {
        return error.reason();
    }
    return "nothing went wrong";
}

} // namespace

TEST(KWDocumentForms, EachFormIsRecognisedAndComesBackTheSame) {
    for (const Form form : forms) {
        const KWData data = bouncingBall().data(form);
        const KWDocument read = KWDocument::read(data, "ball");
        EXPECT_EQ(read.form(), form);
        EXPECT_EQ(paths(read), paths(bouncingBall()));
        EXPECT_EQ(valueBits(read), valueBits(bouncingBall()));
        EXPECT_EQ(read.data(), data);
    }
}

TEST(KWDocumentForms, AnyFormTurnsIntoAnyOther) {
    for (const Form from : forms)
        for (const Form to : forms) {
            const KWDocument first = KWDocument::read(lightShow().data(from));
            const KWDocument second = KWDocument::read(first.data(to));
            EXPECT_EQ(second.form(), to);
            EXPECT_EQ(paths(second), paths(lightShow()));
            EXPECT_EQ(valueBits(second), valueBits(lightShow()));
            EXPECT_EQ(second.data(Form::binary), lightShow().data(Form::binary));
        }
}

TEST(KWDocumentForms, AnElementOfASequentialDocumentOwnsItsChannels) {
    const KWDocument read = KWDocument::read(bouncingBall().data(Form::sequential));
    for (const KWDocument::Place& place : read.channels()) {
        const auto element =
            std::dynamic_pointer_cast<KWElement>(read.elements()[place.element].object);
        ASSERT_TRUE(element);
        EXPECT_EQ(place.channel->owner(), static_cast<KWChannelOwner*>(element.get()));
        EXPECT_EQ(place.channel->channelGroup(), place.group);
        EXPECT_EQ(place.channel->undoManager(), read.undoManager().get());
    }
}

TEST(KWDocumentForms, IsSavedInTheFormItWasOpenedIn) {
    const TemporaryFolder folder;
    for (const Form form : forms) {
        bouncingBall().save(folder.path() / "ball", form);
        const KWDocument read = KWDocument::open(folder.path() / "ball");
        read.save(folder.path() / "again");
        EXPECT_EQ(contentsOf(folder.path() / "again"), contentsOf(folder.path() / "ball"));
    }
    EXPECT_EQ(KWDocument().form(), Form::binary);
}

TEST(KWDocumentForms, ElementsAreAddedToASequentialDocument) {
    KWDocument document = KWDocument::read(bouncingBall().data(Form::sequential));
    document.addElement(elementWith("Lamp", {constantChannel("level", 1)}));
    EXPECT_EQ(paths(KWDocument::read(document.data())).back(), "Lamp/level");
}

TEST(KWDocumentForms, ABigEndianStreamOpensAndIsWrittenLittleEndian) {
    const KWDocument document = KWDocument::read(bigEndianStream());
    const auto places = document.channels();
    ASSERT_EQ(places.size(), 1U);
    EXPECT_EQ(places[0].path, "gain");
    EXPECT_EQ(places[0].channel->channelColorIndex(), 300);
    EXPECT_EQ(places[0].channel->unitType(), KWUnitTypeAngle);
    EXPECT_EQ(places[0].channel->valueForTime(std::nullopt), 0.5F);
    EXPECT_TRUE(stringOf(document.data()).starts_with("\x04\x0bstreamtyped"));
    EXPECT_EQ(paths(KWDocument::read(document.data())), Strings{"gain"});
}

TEST(KWDocumentForms, ValuesBehindTheRootAreKept) {
    const auto lamp = elementWith("Lamp", {constantChannel("level", 1)});
    KWArchiver archiver;
    archiver.encodeRootObject(KWArchiveValue::mutableArray({lamp}));
    const std::int32_t count = 300;
    const float scale = 0.5F;
    const double wide = 0.25;
    const std::optional<std::string> text = "text";
    archiver.encodeValueOfObjCTypeAt("i", &count);
    archiver.encodeValueOfObjCTypeAt("f", &scale);
    archiver.encodeValueOfObjCTypeAt("d", &wide);
    archiver.encodeValueOfObjCTypeAt("*", &text);
    archiver.encodeDataObject(bytesOf("00ff01"));
    archiver.encodeBytes(bytesOf("\"bytes\""));
    archiver.encodeRootObject(lamp->channelArray());
    archiver.encodeRootObject(nullptr);
    const KWDocument document = KWDocument::read(archiver.archiverData());
    EXPECT_EQ(document.furtherValues().size(), 9U);
    EXPECT_EQ(document.data(), archiver.archiverData());
}

TEST(KWDocumentForms, AnElementBehindTheRootIsFound) {
    const KWDocument document =
        KWDocument::read(streamOf({elementWith("A", {constantChannel("x", 1)}),
                                   elementWith("B", {constantChannel("y", 2)})}));
    EXPECT_EQ(paths(document), (Strings{"A/x", "B/y"}));
    EXPECT_TRUE(document.channels()[1].channel->undoManager());
}

TEST(KWDocumentForms, ValuesBehindTheRootThatCannotBeWrittenKeepItFromBeingSaved) {
    KWArchiver archiver;
    archiver.encodeRootObject(constantChannel("x", 1));
    const std::int32_t two = 2;
    archiver.encodeValuesOfObjCTypesAt("ii", {&two, &two});
    const KWDocument document = KWDocument::read(archiver.archiverData(), "two.stream");
    EXPECT_EQ(paths(document), Strings{"x"});
    EXPECT_EQ(reasonOf([&] { document.data(); }),
              "the value of the types \"ii\" behind the root cannot be written");
    EXPECT_NO_THROW(document.data(Form::binary));
}

TEST(KWDocumentForms, AStreamThatDoesNotBeginWithAnObjectIsRefused) {
    KWArchiver archiver;
    const std::int32_t two = 2;
    archiver.encodeValueOfObjCTypeAt("i", &two);
    EXPECT_THROW(KWDocument::read(archiver.archiverData()), KWArchiveError);
    EXPECT_THROW(KWDocument::read(bytesOf(littleEndianHeader)), KWArchiveError);
}

TEST(KWDocumentForms, FindsTheElementsOfUnknownHostsInAStream) {
    const auto array = elementWith("", {constantChannel("level", 2)})->channelArray();
    const auto other = elementWith("", {constantChannel("angle", 3)})->channelArray();
    const auto lamp = streamObject({"HostLamp", "NSObject"}, {3, 0},
                                   {streamGroup("@", {"left"}), streamGroup("@@", {array, other}),
                                    streamGroup("f", {KWNumber(40.5F)})});
    const KWData data = streamOf({KWArchiveValue::mutableArray({lamp})});
    const KWDocument document = KWDocument::read(data);
    ASSERT_EQ(document.elements().size(), 2U);
    EXPECT_EQ(document.elements()[0].className, "HostLamp");
    EXPECT_EQ(paths(document), (Strings{"level", "angle"}));
    EXPECT_EQ(document.data(), data);
}

TEST(KWDocumentForms, ObjectsOfUnknownClassesStayInArchivesOfTheirKind) {
    const KWDocument stream =
        KWDocument::read(streamOf({streamObject({"Host", "NSObject"}, {0, 0}, {})}), "it");
    EXPECT_THROW(stream.data(Form::binary), KWArchiveError);

    ArchiveBuilder builder;
    const KWDocument keyed = KWDocument::read(
        builder.finishWithRoot(builder.addInstance({"Host", "NSObject"}, {})), "it");
    try {
        keyed.data(Form::sequential);
        FAIL() << "it has been written";
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), KWArchiveError::Kind::unsupported);
        EXPECT_EQ(error.file(), "it");
    }
}

TEST(KWDocumentForms, OlderVersionsAreWrittenOnRequest) {
    const KWDocument document = lightShow();
    const KWData old = document.data(
        Form::sequential, {{"KWChannelArray", 1}, {"KWChannel", 1}, {"KWKeyFramedChannel", 0}});
    KWUnarchiver unarchiver(old);
    unarchiver.decodeObject();
    EXPECT_EQ(unarchiver.versionForClassName("KWChannel"), 1);
    EXPECT_EQ(unarchiver.versionForClassName("KWKeyFramedChannel"), 0);
    EXPECT_EQ(unarchiver.versionForClassName("KWChannelArray"), 1);
    const KWDocument read = KWDocument::read(old);
    EXPECT_EQ(paths(read), paths(document));
    for (const KWDocument::Place& place : read.channels())
        EXPECT_EQ(place.channel->unitType(), KWUnitTypeNone);
    EXPECT_TRUE(KWDocument::read(document.data(Form::sequential, {{"KWChannelArray", 0}}))
                    .channels()
                    .empty());
}

TEST(KWDocumentForms, AnUnknownSubclassKeepsItsSuperclassAtItsVersion) {
    // Written as of version 2 the known channel would share a class of version 1 with the unknown.
    const auto host =
        streamObject({"HostChannel", "KWChannel", "NSObject"}, {4, 1, 0},
                     {streamGroup("@", {"host"}), streamGroup("i", {KWNumber(std::int32_t{2})}),
                      streamGroup("@", {nullptr}), streamGroup("f", {KWNumber(0.5F)})});
    KWArchiver archiver;
    archiver.setVersionForClassName(1, "KWChannel");
    const auto known = std::make_shared<KWKeyFramedChannel>("known");
    known->setValueForKeyframe(3, KWTime(1));
    archiver.encodeRootObject(KWArchiveValue::mutableArray({host, known}));

    const KWDocument document = KWDocument::read(archiver.archiverData(), "old.stream");
    EXPECT_EQ(document.writtenVersions().at("KWChannel"), 1);
    EXPECT_EQ(document.data(), archiver.archiverData());
    EXPECT_EQ(KWDocument::read(document.data()).channels().back().path, "known");
    EXPECT_NO_THROW(document.data(Form::sequential, {{"KWChannel", 1}}));
    EXPECT_EQ(reasonOf([&] {
                  document.data(Form::sequential, {{"KWChannel", 0}});
              }),
              "objects of unknown classes hold version 1 of the class \"KWChannel\", so it cannot "
              "be written as version 0");
}

TEST(KWDocumentForms, ACutStreamNeverOpens) {
    const KWData whole = bouncingBall().data(Form::sequential);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_THROW(KWDocument::read({whole.data(), size}, "cut"), KWArchiveError) << size;
}
