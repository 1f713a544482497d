#include <apps/common/KWConversionLosses.h>
#include <gtest/gtest.h>
#include <tests/DocumentTestSupport.h>

namespace {

using Form = KWDocument::Form;
using Attributes = KWElement::Attributes;

constexpr Form forms[] = {Form::binary, Form::xml, Form::sequential};

std::shared_ptr<KWElement> elementAt(const KWDocument& document, std::size_t index) {
    return std::dynamic_pointer_cast<KWElement>(document.elements().at(index).object);
}

} // namespace

TEST(KWElementAttributes, ComeBackInEveryFormInTheirOrder) {
    const auto lamp = elementWith("Lamp", {algebricChannel("a", "2 * T")});
    const Attributes attributes{{"z", "1"}, {"a", "\u00e4 \u03c0"}, {"content", "shape:ball"}};
    lamp->setAttributes(attributes);
    const KWDocument document = documentWith({lamp, elementWith("Plain", {})});
    for (const Form form : forms) {
        const KWDocument read = KWDocument::read(document.data(form));
        EXPECT_EQ(elementAt(read, 0)->attributes(), attributes);
        EXPECT_EQ(elementAt(read, 1)->attributes(), Attributes{});
        const auto channel = std::dynamic_pointer_cast<KWAlgebricChannel>(
            elementAt(read, 0)->channelArray()->ungroupedChannels()->front());
        EXPECT_EQ(channel->sourceText(), "2 * T");
        EXPECT_TRUE(KWDocument::read(read.data(form)).data(form) == read.data(form));
        EXPECT_TRUE(kwConversionLosses(document, form).losses.empty());
    }
}

TEST(KWElementAttributes, LeaveNoTraceWhereThereAreNone) {
    const auto lamp = elementWith("Lamp", {constantChannel("c", 1)});
    const KWDocument document = documentWith({lamp});
    std::vector<KWData> before;
    for (const Form form : forms)
        before.push_back(document.data(form));
    EXPECT_EQ(document.writtenVersions().count("KWElement"), 0U);
    lamp->setAttribute("content", "shape:ball");
    EXPECT_EQ(document.writtenVersions().at("KWElement"), 2);
    lamp->setAttribute("content", "");
    for (std::size_t k = 0; k < std::size(forms); ++k)
        EXPECT_TRUE(document.data(forms[k]) == before[k]);
}

TEST(KWElementAttributes, AreLostInOlderVersionsWhichIsTold) {
    const auto lamp = elementWith("Lamp", {constantChannel("c", 1)});
    lamp->setAttribute("content", "shape:ball");
    const KWDocument document = documentWith({lamp});
    for (const std::int32_t version : {0, 1}) {
        const KWClassVersions versions{{"KWElement", version}};
        EXPECT_EQ(kwConversionLosses(document, Form::sequential, versions).losses,
                  std::vector<std::string>{"Lamp: its 1 attribute: an element of version " +
                                           std::to_string(version) + " has none"});
        const KWDocument read = KWDocument::read(document.data(Form::sequential, versions));
        EXPECT_EQ(elementAt(read, 0)->attributes(), Attributes{});
        EXPECT_EQ(read.channels().size(), 1U);
    }
}

TEST(KWElementAttributes, EmptyAndRepeatedKeysAreNotTaken) {
    KWElement element;
    element.setAttributes({{"a", "1"}, {"", "2"}, {"a", "3"}, {"b", "4"}});
    EXPECT_EQ(element.attributes(), (Attributes{{"a", "1"}, {"b", "4"}}));
    element.setAttribute("a", "5");
    element.setAttribute("c", "6");
    element.setAttribute("", "7");
    element.setAttribute("b", "");
    EXPECT_EQ(element.attributes(), (Attributes{{"a", "5"}, {"c", "6"}}));
    EXPECT_EQ(element.attribute("b"), "");
}

TEST(KWElementAttributes, ElementsAreInsertedAndRemovedInTheList) {
    const auto a = elementWith("a", {}), b = elementWith("b", {}), c = elementWith("c", {});
    KWDocument document = documentWith({a, c});
    document.insertElement(b, 1);
    EXPECT_EQ(document.elements()[1].name, "b");
    EXPECT_EQ(document.removeElement(a), 0U);
    EXPECT_EQ(document.removeElement(a), std::size_t{KWNotFound});
    document.insertElement(a, 99);
    EXPECT_EQ(document.elements()[2].name, "a");
    EXPECT_THROW(document.insertElement(nullptr, 0), std::invalid_argument);
}
