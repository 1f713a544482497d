#include <KWBase/KWConstantChannel.h>

#include <samples/SampleChannels.h>
#include <samples/Samples.h>
#include <tests/ArchiveBuilder.h>

#include <limits>

namespace {

using Limits = std::numeric_limits<float>;

constexpr std::int32_t linear = KWKeyFrameModeLinear;
constexpr std::int32_t hermite = KWKeyFrameModeHermite;
constexpr std::int32_t step = KWKeyFrameModeStep;
constexpr std::int32_t none = KWRepeatModeNone;
constexpr std::int32_t cycle = KWRepeatModeCycle;
constexpr std::int32_t pingPong = KWRepeatModePingPong;

std::shared_ptr<KWElement> spans() {
    auto element = std::make_shared<KWElement>("Spans");
    // The next float after 1.
    constexpr float afterOne = 1 + Limits::epsilon();
    const auto add = [&](const std::shared_ptr<KWKeyFramedChannel>& channel) {
        element->addChannelToGroupNamed(channel);
    };
    add(keyFramed("no keys", hermite, cycle, {}));
    add(keyFramed("one key", hermite, pingPong, {{3, 5}}));
    add(keyFramed("two keys", hermite, none, {{0, 0}, {2, 10}}));
    add(keyFramed("huge span", hermite, cycle, {{-1e30F, -1}, {0, 0}, {1e30F, 1}}));
    add(keyFramed("all floats", linear, pingPong, {{Limits::lowest(), 0}, {Limits::max(), 1}}));
    add(keyFramed("tiny span", hermite, cycle, {{1, 0}, {afterOne, 1}}));
    add(keyFramed("denormal span", linear, pingPong, {{0, 0}, {Limits::denorm_min(), 1}}));
    add(keyFramed("uneven spans", hermite, none,
                  {{0, 0}, {0.001F, 1}, {1000, -1}, {1000.001F, 0}}));
    add(keyFramed("far from zero", step, cycle, {{16777216, 1}, {16777218, 2}, {16777220, 3}}));
    add(keyFramed("up to infinity", linear, none, {{0, 0}, {1, 1}, {Limits::infinity(), 2}}));
    return element;
}

std::shared_ptr<KWElement> shapes() {
    auto element = std::make_shared<KWElement>("Shapes");
    const auto add = [&](const std::string& name, HJHermiteParam shape) {
        element->addChannelToGroupNamed(keyFramed(
            name, hermite, none,
            {{0, 0, shape}, {1, 1, shape}, {2, -1, shape}, {4, 3, shape}, {4.5F, 3, shape}}));
    };
    add("neutral", {});
    add("tension 1", {.tension = 1, .bias = 0, .continuity = 0});
    add("tension -1", {.tension = -1, .bias = 0, .continuity = 0});
    add("tension 1000", {.tension = 1000, .bias = 0, .continuity = 0});
    add("bias 1", {.tension = 0, .bias = 1, .continuity = 0});
    add("bias -1000", {.tension = 0, .bias = -1000, .continuity = 0});
    add("continuity -1", {.tension = 0, .bias = 0, .continuity = -1});
    add("continuity 1000", {.tension = 0, .bias = 0, .continuity = 1000});
    add("all extreme", {.tension = -1e20F, .bias = 1e20F, .continuity = -1e20F});
    add("not a number", {.tension = Limits::quiet_NaN(), .bias = 0, .continuity = 0});
    return element;
}

std::shared_ptr<KWElement> values() {
    auto element = std::make_shared<KWElement>("Values");
    const auto add = [&](const std::shared_ptr<KWChannel>& channel) {
        element->addChannelToGroupNamed(channel);
    };
    add(channelWithNameInitialValueColor<KWConstantChannel>("minus zero", -0.0F, 0));
    add(channelWithNameInitialValueColor<KWConstantChannel>("not a number", Limits::quiet_NaN(),
                                                            7));
    add(channelWithNameInitialValueColor<KWConstantChannel>("infinite", -Limits::infinity(), -1));
    add(keyFramed("largest floats", hermite, none,
                  {{0, Limits::lowest()}, {1, Limits::max()}, {2, Limits::lowest()}}));
    add(keyFramed("denormals", linear, none, {{0, Limits::denorm_min()}, {1, Limits::min()}}));
    add(keyFramed("through infinity", hermite, none, {{0, 0}, {1, Limits::infinity()}, {2, 0}}));
    add(keyFramed("through no number", linear, none, {{0, 0}, {1, Limits::quiet_NaN()}, {2, 0}}));
    return element;
}

std::shared_ptr<KWElement> codes() {
    auto element = std::make_shared<KWElement>("Codes");
    for (const std::int32_t mode : {linear, hermite, step, 3, -1})
        for (const std::int32_t repeat : {none, cycle, pingPong, 3, -1})
            element->addChannelToGroupNamed(
                keyFramed("mode " + std::to_string(mode) + ", repeat " + std::to_string(repeat),
                          mode, repeat, {{-1, 0.5F}, {0, 1}, {1.5F, -2}, {2, 4}}),
                "Mode " + std::to_string(mode));
    auto channel = channelWithNameInitialValueColor<KWConstantChannel>("unit 7, colour 99", 1, 99);
    channel->setUnitType(7);
    element->addChannelToGroupNamed(channel);
    element->channelArray()->addGroupWithName("empty group");
    return element;
}

std::shared_ptr<KWElement> names() {
    auto element = std::make_shared<KWElement>("Names");
    for (const char* name :
         {"\"quotes\"", "a/slash", "a, comma", "two\nlines", "na\xc3\xafve",
          "\xe6\x98\x8e\xe3\x82\x8b\xe3\x81\x95", "\xf0\x9f\x92\xa1", "same", "same", "", "$null"})
        element->addChannelToGroupNamed(
            channelWithNameInitialValueColor<KWConstantChannel>(name, 1, 0), "group/slash");
    return element;
}

} // namespace

KWDocument hardCurvesMuseum() {
    KWDocument document;
    for (const auto& element : {spans(), shapes(), values(), codes(), names()})
        document.addElement(element);
    return document;
}

KWData irregularMuseum() {
    using Keys = ArchiveBuilder::Keys;
    constexpr float notANumber = Limits::quiet_NaN();
    ArchiveBuilder builder;
    std::vector<ArchiveBuilder::Number> channels;
    const auto add = [&](std::string_view name, const Keys& keys, std::int32_t mode = hermite) {
        channels.push_back(builder.addKeyFramedChannel(name, keys, mode));
    };
    add("in order", ArchiveBuilder::neutralKeys({0, 1, 2}, {0, 1, 0}));
    add("equal times", ArchiveBuilder::neutralKeys({0, 1, 1, 2}, {0, 1, 5, 0}));
    add("unsorted", ArchiveBuilder::neutralKeys({0, 2, 1}, {0, 1, 0}), linear);
    add("no time", ArchiveBuilder::neutralKeys({0, notANumber, 2}, {0, 1, 0}), linear);

    Keys fewValues = ArchiveBuilder::neutralKeys({0, 1, 2}, {0, 1});
    add("fewer values", fewValues);
    Keys fewShapes = ArchiveBuilder::neutralKeys({0, 1, 2}, {0, 1, 0});
    fewShapes.shapes.resize(1);
    add("fewer shapes", fewShapes);
    add("more values", ArchiveBuilder::neutralKeys({0, 1}, {0, 1, 2}), step);
    add("no shapes at all", {{0, 1}, {0, 1}, {}}, linear);

    // Shapes of odd lengths are cut or filled up, so this one is in order.
    Keys oddShapes = ArchiveBuilder::neutralKeys({0, 1}, {0, 1});
    oddShapes.shapes[0].resize(35);
    oddShapes.shapes[1].resize(40);
    add("odd shapes", oddShapes);

    const auto array = builder.addChannelArray({}, {builder.addGroup("Wing", channels)});
    return builder.finishWithRoot(builder.addList({builder.addElement("Museum", array)}));
}
