#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWUnarchiver.h>

#include <gtest/gtest.h>
#include <tests/ArchiveBuilder.h>
#include <tests/DocumentTestSupport.h>
#include <tests/StreamBuilder.h>

#include <bit>

namespace {

using Form = KWDocument::Form;
using Strings = std::vector<std::string>;
using Number = ArchiveBuilder::Number;

constexpr Form forms[] = {Form::binary, Form::xml, Form::sequential};

/// Those whose printed text is another expression, or none.
const Strings texts{"2*T + 1", "t - 1",      "ln(t + 2)", "LOG(t)",  "abs(t)", "1.23456789*t",
                    "exp(-t)", "\u03c0 * t", "sin(t)",    "t-(2-t)", "-(t^2)", "1/3"};

std::shared_ptr<KWElement> elementOfTexts() {
    std::vector<std::shared_ptr<KWChannel>> channels{constantChannel("level", 1)};
    std::vector<std::shared_ptr<KWChannel>> grouped;
    for (const std::string& text : texts)
        (channels.size() < 6 ? channels : grouped).push_back(algebricChannel(text, text));
    channels.push_back(std::make_shared<KWAlgebricChannel>("none"));
    grouped.push_back(constantChannel("hue", 1));
    return elementWith("Lamp", channels, grouped);
}

std::shared_ptr<KWAlgebricChannel> algebricAt(const KWDocument& document, const std::string& path) {
    const auto places = document.channels();
    return std::dynamic_pointer_cast<KWAlgebricChannel>(KWDocument::placeAt(places, path).channel);
}

/// The texts, "-" for none, in order.
Strings textsOf(const KWDocument& document) {
    Strings found;
    for (const auto& place : document.channels())
        if (const auto* channel = dynamic_cast<const KWAlgebricChannel*>(place.channel.get()))
            found.push_back(channel->sourceText().value_or("-"));
    return found;
}

std::uint32_t bitsAt(const KWChannel& channel, float time) {
    return std::bit_cast<std::uint32_t>(channel.valueForTime(KWTime(time)));
}

/// A keyed document with an element of two algebraic channels "a" and "b", and this under the key
/// of the texts.
KWData documentWithTexts(const std::function<Number(ArchiveBuilder&)>& addTexts) {
    ArchiveBuilder builder;
    const Number channels =
        builder.addChannelArray({builder.addAlgebricChannel("a"), builder.addAlgebricChannel("b")});
    const Number element = builder.addInstance(
        {"KWElement", "NSObject"}, {{"name", builder.reference(builder.addString("Lamp"))},
                                    {"channelArray", builder.reference(channels)},
                                    {"expressionTexts", builder.reference(addTexts(builder))}});
    return builder.finishWithRoot(builder.addList({element}));
}

KWData documentWithTexts(const Strings& list) {
    return documentWithTexts([&list](ArchiveBuilder& builder) {
        std::vector<Number> numbers;
        for (const std::string& text : list)
            numbers.push_back(builder.addString(text));
        return builder.addList(numbers);
    });
}

} // namespace

TEST(KWElementExpressions, ComeBackAsTypedInEveryForm) {
    const auto element = elementOfTexts();
    const KWDocument document = documentWith({element});
    const LoggedLines log;
    for (const Form form : forms) {
        const KWDocument read = KWDocument::read(document.data(form));
        EXPECT_EQ(textsOf(read), textsOf(document));
        const auto places = read.channels();
        for (const auto& place : document.channels())
            for (const float time : {-2.0F, -0.1F, 0.0F, 0.3F, 1.0F, 7.5F, 1e20F})
                EXPECT_EQ(bitsAt(*KWDocument::placeAt(places, place.path).channel, time),
                          bitsAt(*place.channel, time))
                    << place.path << " at " << time;
        EXPECT_TRUE(KWDocument::read(read.data(form)).data(form) == read.data(form));
        EXPECT_FALSE(read.undoManager()->canUndo());
    }
    // The printed texts of the sequential form that cannot be read.
    EXPECT_FALSE(log.lines.empty());
    for (const std::string& line : log.lines)
        EXPECT_TRUE(line.starts_with("set err = ")) << line;
}

TEST(KWElementExpressions, ComeBackFromAnArchiveThatIsNoDocument) {
    kwRegisterElementClass();
    const auto element = elementWith("Lamp", {algebricChannel("a", "ln(t)")});
    const auto data = KWArchiver::archivedDataWithRootObject(element);
    const auto read =
        std::dynamic_pointer_cast<KWElement>(KWUnarchiver::unarchiveValueWithData(data).object());
    ASSERT_TRUE(read);
    const auto channel = std::dynamic_pointer_cast<KWAlgebricChannel>(
        read->channelArray()->ungroupedChannels()->front());
    EXPECT_EQ(channel->sourceText(), "ln(t)");
    EXPECT_EQ(channel->expression(), "log(t)");
}

TEST(KWElementExpressions, AreAListInTheOrderOfTheChannels) {
    const auto element = elementWith("Lamp",
                                     {algebricChannel("a", "T"), constantChannel("c", 1),
                                      std::make_shared<KWAlgebricChannel>("none")},
                                     {algebricChannel("b", "2 * t")});
    KWKeyedArchiver archiver;
    archiver.encodeObjectForKey(element, "root");
    const KWPropertyList list = archiver.finishPropertyList();
    const auto objects = list.children(list.valueForKey(list.root(), "$objects"));
    const auto fields = list.children(objects[1]);
    ASSERT_EQ(fields.size(), 8U);
    EXPECT_EQ(list.stringValue(fields[2]), "expressionTexts");
    const auto texts = objects[list.uidValue(list.valueForKey(objects[1], "expressionTexts"))];
    Strings found;
    for (const auto text : list.children(list.valueForKey(texts, "NS.objects")))
        found.emplace_back(list.stringValue(objects[list.uidValue(text)]));
    EXPECT_EQ(found, (Strings{"T", "", "2 * t"}));
}

TEST(KWElementExpressions, LeaveNoTraceWhereThereAreNone) {
    const auto element = elementWith("Lamp", {constantChannel("c", 1)});
    KWKeyedArchiver archiver;
    archiver.encodeObjectForKey(element, "root");
    const KWPropertyList list = archiver.finishPropertyList();
    const auto objects = list.children(list.valueForKey(list.root(), "$objects"));
    EXPECT_EQ(list.valueForKey(objects[1], "expressionTexts"), KWPropertyList::none);
    element->setChannelArray(nullptr);
    for (const Form form : forms)
        EXPECT_EQ(KWDocument::read(documentWith({element}).data(form)).elements().size(), 1U);
}

TEST(KWElementExpressions, AreNotInVersion0) {
    const KWDocument document =
        documentWith({elementWith("Lamp", {algebricChannel("a", "2 * T"), constantChannel("c", 1),
                                           algebricChannel("b", "ln(t)")})});
    const KWData old = document.data(Form::sequential, {{"KWElement", 0}});
    EXPECT_LT(old.size(), document.data(Form::sequential).size());
    EXPECT_EQ(KWUnarchiver(old).versionForClassName("KWElement"), KWNotFound);
    const KWDocument read = KWDocument::read(old);
    EXPECT_EQ(textsOf(read), (Strings{"2*t", "log(t)"}));
    EXPECT_EQ(algebricAt(read, "b")->expression(), "ln(t)") << "log prints as ln";
    EXPECT_EQ(textsOf(KWDocument::read(read.data())), textsOf(read));
}

TEST(KWElementExpressions, AreThoseThatAnArrayOfVersion0Holds) {
    const KWDocument document = documentWith(
        {elementWith("Lamp", {algebricChannel("a", "ln(t)")}, {algebricChannel("b", "2 * T")})});
    const LoggedLines log;
    const KWDocument read =
        KWDocument::read(document.data(Form::sequential, {{"KWChannelArray", 0}}));
    EXPECT_EQ(textsOf(read), Strings{"ln(t)"});
    EXPECT_EQ(log.lines, Strings{});
}

TEST(KWElementExpressions, ATextThatIsRefusedIsLoggedAndTheOthersComeBack) {
    const LoggedLines log;
    const KWDocument document = KWDocument::read(documentWithTexts(Strings{"2*(t", "t + 1"}));
    EXPECT_EQ(textsOf(document), (Strings{"-", "t + 1"}));
    EXPECT_EQ(log.lines, Strings{"the text of the expression of \"a\" in \"Lamp\" is not restored: "
                                 "the parentheses do not match"});
}

TEST(KWElementExpressions, ARefusedTextLeavesWhatWasReadWithTheChannel) {
    KWData data =
        documentWith({elementWith("Lamp", {algebricChannel("a", "2 * T")})}).data(Form::sequential);
    std::string bytes(reinterpret_cast<const char*>(data.data()), data.size());
    const std::size_t place = bytes.find("2 * T");
    ASSERT_NE(place, std::string::npos);
    data[place + 4] = std::byte{'('};
    const LoggedLines log;
    const KWDocument read = KWDocument::read(data);
    EXPECT_EQ(textsOf(read), Strings{"2*t"});
    EXPECT_EQ(algebricAt(read, "a")->valueForTime(KWTime(3)), 6.0F);
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_TRUE(log.lines[0].starts_with("the text of the expression of \"a\" in \"Lamp\""));
}

TEST(KWElementExpressions, AListOfAnotherLengthRestoresNothing) {
    for (const Strings& list : {Strings{"t"}, Strings{"t", "t", "t"}, Strings{}}) {
        const LoggedLines log;
        EXPECT_EQ(textsOf(KWDocument::read(documentWithTexts(list))), (Strings{"-", "-"}));
        EXPECT_EQ(log.lines, Strings{"the texts of the expressions in \"Lamp\" are not those of "
                                     "its channels and are not restored"});
    }
}

TEST(KWElementExpressions, WhatIsNoListOfTextsIsLoggedAndDoesNoHarm) {
    const std::vector<std::function<Number(ArchiveBuilder&)>> odd{
        [](ArchiveBuilder& it) { return it.addString("t"); },
        [](ArchiveBuilder& it) { return it.addObject(it.list.addInt(2)); },
        [](ArchiveBuilder& it) { return it.addConstantChannel("c", 1); },
        [](ArchiveBuilder& it) {
            return it.addList({it.addObject(it.list.addInt(2)), it.addList({})});
        }};
    for (const auto& addTexts : odd) {
        const LoggedLines log;
        EXPECT_EQ(textsOf(KWDocument::read(documentWithTexts(addTexts))), (Strings{"-", "-"}));
        EXPECT_FALSE(log.lines.empty());
    }
}

TEST(KWElementExpressions, AModeThatIsNoneTakesNoText) {
    ArchiveBuilder builder;
    const Number channels = builder.addChannelArray({builder.addAlgebricChannel("a", 7)});
    const Number list = builder.addList({builder.addString("t")});
    const KWData data = builder.finishWithRoot(builder.addInstance(
        {"KWElement", "NSObject"}, {{"channelArray", builder.reference(channels)},
                                    {"expressionTexts", builder.reference(list)}}));
    const LoggedLines log;
    EXPECT_EQ(textsOf(KWDocument::read(data)), Strings{"-"});
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_TRUE(log.lines[0].ends_with("the mode of the expression is neither 0 nor 1"));
}

TEST(KWElementExpressions, ComeBackWithoutANotice) {
    const KWData data = documentWithTexts(Strings{"t", "2*t"});
    int notices = 0;
    const auto observer = KWNotificationCenter::defaultCenter().addObserver(
        KWChannelChangedNotification, nullptr, [&](const KWNotification&) { ++notices; });
    const KWDocument document = KWDocument::read(data);
    EXPECT_EQ(textsOf(document), (Strings{"t", "2*t"}));
    EXPECT_EQ(notices, 0);
    EXPECT_FALSE(document.undoManager()->canUndo());
}

TEST(KWElementExpressions, ReachAChannelThatWasBeingReadBeforeItsElement) {
    // The channel comes first; on the way to its owner the element is read inside of it.
    ArchiveBuilder builder;
    const Number element = builder.reserve();
    const Number channel = builder.addAlgebricChannel("a", 1, element);
    const Number array = builder.addChannelArray({channel, builder.addAlgebricChannel("b")});
    const Number list = builder.addList({builder.addString("ln(t)"), builder.addString("T")});
    builder.setObject(element,
                      builder.instance(builder.addClass({"KWElement", "NSObject"}),
                                       {{"name", builder.reference(builder.addString("Lamp"))},
                                        {"channelArray", builder.reference(array)},
                                        {"expressionTexts", builder.reference(list)}}));
    const KWData data = builder.finish({{"selected", builder.reference(channel)},
                                        {"root", builder.reference(builder.addList({element}))}});
    const LoggedLines log;
    const KWDocument document = KWDocument::read(data);
    ASSERT_TRUE(algebricAt(document, "Lamp/a"));
    EXPECT_EQ(algebricAt(document, "Lamp/a")->sourceText(), "ln(t)");
    EXPECT_EQ(algebricAt(document, "Lamp/b")->sourceText(), "T");
    EXPECT_EQ(log.lines, Strings{});
}

TEST(KWElementExpressions, AreOfferedToTheChannelsOnceOnly) {
    const KWDocument document = KWDocument::read(documentWithTexts(Strings{"t", "2*t"}));
    const auto element = std::dynamic_pointer_cast<KWElement>(document.elements().front().object);
    algebricAt(document, "a")->setExpression("3*t");
    element->finishExpressionTexts();
    EXPECT_EQ(textsOf(document), (Strings{"3*t", "2*t"}));
}

namespace {

std::string longText(int terms, const std::string& last) {
    std::string text;
    for (int k = 0; k < terms; ++k)
        text += "t+";
    return text + last;
}

/// Why a document is not read; "" when it is.
std::string refusal(const KWData& data) {
    try {
        KWDocument::read(data);
        return {};
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), KWArchiveError::Kind::unsupported);
        return error.reason();
    }
}

} // namespace

TEST(KWElementExpressions, AnArchiveOfOneLongTextForManyChannelsIsRefused) {
    constexpr int count = 300;
    ArchiveBuilder builder;
    std::vector<Number> channels;
    for (int k = 0; k < count; ++k)
        channels.push_back(builder.addAlgebricChannel("a"));
    const Number array = builder.addChannelArray(channels);
    const Number text = builder.addString(longText(16'000, "t"));
    const Number list = builder.addList(std::vector<Number>(count, text));
    const Number element = builder.addInstance(
        {"KWElement", "NSObject"}, {{"name", builder.reference(builder.addString("Lamp"))},
                                    {"channelArray", builder.reference(array)},
                                    {"expressionTexts", builder.reference(list)}});
    const std::string reason = "the archive refers to the same long values too often";
    EXPECT_EQ(refusal(builder.finishWithRoot(element)), reason);

    StreamBuilder stream(false);
    const StreamBuilder::Chain interpreter{{"KWAlgebricInterpreter", 0}, {"NSObject", 0}};
    stream.list(count, [&] {
        int label = 0;
        for (int k = 0; k < count; ++k)
            stream.object(interpreter, [&] {
                if (k == 0) {
                    // The interpreter's class has been met by now, the string's not.
                    label = stream.nextLabel();
                    stream.string(longText(16'000, "t"));
                } else {
                    stream.again(label);
                }
                stream.i(KWExpressionModeT);
            });
    });
    EXPECT_EQ(refusal(stream.bytes()), reason);
}

TEST(KWElementExpressions, ATextThatIsSlowToScanComesBackInManyChannels) {
    // Scanned anew behind each negation this would take minutes.
    std::string chain = "-t";
    while (chain.size() + 4 <= KWExpressionMaximumLength)
        chain += ")(-t";
    for (const bool isGood : {true, false}) {
        const std::string text = isGood ? chain : chain + "+";
        ArchiveBuilder builder;
        std::vector<Number> channels;
        for (int k = 0; k < 45; ++k)
            channels.push_back(builder.addAlgebricChannel("a"));
        const Number array = builder.addChannelArray(channels);
        const Number list = builder.addList(std::vector<Number>(45, builder.addString(text)));
        const Number element = builder.addInstance(
            {"KWElement", "NSObject"}, {{"name", builder.reference(builder.addString("Lamp"))},
                                        {"channelArray", builder.reference(array)},
                                        {"expressionTexts", builder.reference(list)}});
        const LoggedLines log;
        const KWDocument read =
            KWDocument::read(builder.finishWithRoot(builder.addList({element})));
        EXPECT_TRUE(textsOf(read) == Strings(45, isGood ? text : "-"));
        EXPECT_EQ(log.lines.size(), isGood ? 0U : 45U);
    }
}

TEST(KWElementExpressions, ManyLongTextsOfTheirOwnComeBack) {
    std::vector<std::shared_ptr<KWChannel>> channels;
    for (int k = 0; k < 200; ++k)
        channels.push_back(
            algebricChannel("a" + std::to_string(k), longText(5'000, std::to_string(k))));
    const KWDocument document = documentWith({elementWith("Lamp", channels)});
    for (const Form form : forms)
        EXPECT_TRUE(textsOf(KWDocument::read(document.data(form))) == textsOf(document));
}
