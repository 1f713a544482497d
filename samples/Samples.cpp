#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>

#include <samples/SampleChannels.h>
#include <samples/Samples.h>

#include <array>

namespace {

template <class C>
std::shared_ptr<C> styled(std::shared_ptr<C> channel, std::int32_t unitType, std::int32_t color) {
    channel->setUnitType(unitType);
    channel->setChannelColorIndex(color);
    return channel;
}

std::shared_ptr<KWElement> ball() {
    constexpr HJHermiteParam flat{.tension = 1, .bias = 0, .continuity = 0};
    auto ball = std::make_shared<KWElement>("Ball");
    ball->addChannelToGroupNamed(
        styled(channelWithNameInitialValueColor<KWConstantChannel>("radius", 0.11F, 6),
               KWUnitTypeLength, 6));

    // A fall from two metres, 4.905 metres a second squared of it; time runs back after the impact.
    ball->addChannelToGroupNamed(styled(keyFramed("x", KWKeyFrameModeHermite, KWRepeatModePingPong,
                                                  {{0, -1.5F, flat}, {1.5F, 0}, {3, 1.5F, flat}}),
                                        KWUnitTypeLength, 3),
                                 "Position");
    ball->addChannelToGroupNamed(styled(keyFramed("y", KWKeyFrameModeHermite, KWRepeatModePingPong,
                                                  {{0, 2, flat},
                                                   {0.155F, 1.882159F},
                                                   {0.31F, 1.528630F},
                                                   {0.465F, 0.939417F},
                                                   {0.6207F, 0.11F}}),
                                        KWUnitTypeLength, 4),
                                 "Position");
    ball->addChannelToGroupNamed(styled(keyFramed("rotation", KWKeyFrameModeLinear,
                                                  KWRepeatModeCycle, {{0, 0}, {1.2F, -6.2831855F}}),
                                        KWUnitTypeAngle, 0),
                                 "Position");

    // Flat and wide for a moment around each impact.
    ball->addChannelToGroupNamed(
        styled(keyFramed("squash", KWKeyFrameModeHermite, KWRepeatModePingPong,
                         {{0, 1, flat}, {0.5F, 1, flat}, {0.59F, 1.12F}, {0.6207F, 0.72F, flat}}),
               KWUnitTypeNone, 1),
        "Shape");
    ball->addChannelToGroupNamed(
        styled(
            keyFramed("shear", KWKeyFrameModeHermite, KWRepeatModePingPong,
                      {{0, 0}, {0.62F, 0.08F, {.tension = 0, .bias = 0.5F, .continuity = -0.5F}}}),
            KWUnitTypeAngle, 2),
        "Shape");
    ball->setAttributes({{"content", "shape:ball"},
                         {"color", "#e5484d"},
                         {"color 2", "#2f7fd6"},
                         {"shadow", "0.62"}});
    return ball;
}

std::shared_ptr<KWElement> camera() {
    auto camera = std::make_shared<KWElement>("Camera");
    camera->addChannelToGroupNamed(
        styled(channelWithNameInitialValueColor<KWConstantChannel>("height", 1.2F, 5),
               KWUnitTypeLength, 5));
    camera->addChannelToGroupNamed(styled(
        keyFramed(
            "pan", KWKeyFrameModeHermite, KWRepeatModeNone,
            {{0, -0.2F}, {4, 0.15F, {.tension = 0.5F, .bias = 0, .continuity = 0}}, {10, 0.2F}}),
        KWUnitTypeAngle, 3));
    camera->setAttributes({{"stage", "1280x720"},
                           {"scale", "270"},
                           {"rate", "25"},
                           {"to", "6"},
                           {"backdrop", "room"},
                           {"color", "#cfdcea"},
                           {"color 2", "#f3ead9"},
                           {"floor", "#b98d63"}});
    return camera;
}

std::shared_ptr<KWAlgebricChannel> formula(const std::string& name, const std::string& text) {
    auto channel = std::make_shared<KWAlgebricChannel>(name);
    channel->setExpression(text);
    return channel;
}

/// Long waves with short ones on them.
std::shared_ptr<KWElement> sea() {
    auto sea = std::make_shared<KWElement>("Sea");
    sea->addChannelToGroupNamed(styled(
        channelWithNameInitialValueColor<KWConstantChannel>("depth", 12, 5), KWUnitTypeLength, 5));
    sea->addChannelToGroupNamed(
        styled(formula("height", "0.8*sin(2*\u03c0*t/7) + 0.15*sin(2*\u03c0*t/1.9)"),
               KWUnitTypeLength, 4),
        "Surface");
    sea->addChannelToGroupNamed(
        styled(formula("slope", "atan(0.4*cos(2*\u03c0*t/7))"), KWUnitTypeAngle, 2), "Surface");
    return sea;
}

/// Pushed at 0 s, it comes to rest.
std::shared_ptr<KWElement> buoy() {
    auto buoy = std::make_shared<KWElement>("Buoy");
    buoy->addChannelToGroupNamed(
        styled(formula("tilt", "0.5*exp(-abs(t)/4)*cos(3*t)"), KWUnitTypeAngle, 0));
    buoy->addChannelToGroupNamed(
        styled(formula("battery", "1 - ln(1 + abs(t)/3600)"), KWUnitTypeNone, 1));
    buoy->addChannelToGroupNamed(styled(
        keyFramed("lamp", KWKeyFrameModeStep, KWRepeatModeCycle, {{0, 1}, {0.5F, 0}, {3, 0}}),
        KWUnitTypeNone, 3));
    return buoy;
}

/// Levels of one lamp's channel, sixteen steps of a pattern in bits.
std::shared_ptr<KWKeyFramedChannel> chaser(const std::string& name, unsigned pattern, float high,
                                           float stepLength, std::int32_t color) {
    auto channel = keyFramed(name, KWKeyFrameModeStep, KWRepeatModeCycle, {});
    for (unsigned step = 0; step <= 16; ++step) {
        const float level = (pattern >> (step % 16) & 1) != 0 ? high : 0;
        channel->setValueForKeyframe(level, KWTime(static_cast<float>(step) * stepLength));
    }
    channel->setChannelColorIndex(color);
    return channel;
}

} // namespace

KWDocument bouncingBall() {
    KWDocument document;
    document.addElement(ball());
    document.addElement(camera());
    return document;
}

KWDocument waves() {
    KWDocument document;
    document.addElement(sea());
    document.addElement(buoy());
    return document;
}

KWDocument lightShow() {
    constexpr std::array<unsigned, 4> patterns{0x8421, 0xa5a5, 0xf00f, 0x3c3c};
    KWDocument document;
    for (const char* truss : {"Front truss", "Back truss"}) {
        const bool isBack = std::string(truss) == "Back truss";
        auto element = std::make_shared<KWElement>(truss);
        for (unsigned lamp = 0; lamp < 4; ++lamp) {
            const std::string group = "Lamp " + std::to_string(lamp + 1);
            const unsigned pattern = patterns[(lamp + (isBack ? 2 : 0)) % 4];
            const float length = isBack ? 0.5F : 0.25F;
            element->addChannelToGroupNamed(chaser("dimmer", pattern, 1, length, 1), group);
            element->addChannelToGroupNamed(chaser("red", pattern >> 1, 1, 2 * length, 3), group);
            element->addChannelToGroupNamed(chaser("green", ~pattern & 0xffff, 0.75F, length, 4),
                                            group);
            element->addChannelToGroupNamed(chaser("blue", pattern ^ 0x5555, 0.5F, length, 5),
                                            group);
            const float side = lamp < 2 ? -0.6F : 0.6F;
            element->addChannelToGroupNamed(
                styled(keyFramed("pan", KWKeyFrameModeLinear, KWRepeatModeCycle,
                                 {{0, 0}, {2, side}, {6, -side}, {8, 0}}),
                       KWUnitTypeAngle, 2),
                group);
        }
        document.addElement(element);
    }
    return document;
}

KWDocument heavyDocument(int channelCount, int keyCount) {
    KWDocument document;
    auto element = std::make_shared<KWElement>("Heavy");
    std::uint32_t random = 1;
    for (int c = 0; c < channelCount; ++c) {
        auto channel =
            keyFramed("channel " + std::to_string(c + 1), KWKeyFrameModeHermite, c % 3, {});
        for (int k = 0; k < keyCount; ++k) {
            random = random * 1664525U + 1013904223U;
            const HJHermiteParam shape{.tension = static_cast<float>(k % 5) * 0.25F - 0.5F,
                                       .bias = 0,
                                       .continuity = static_cast<float>(k % 3) * 0.25F};
            channel->setValueHermiteValueForKeyframe(static_cast<float>(random >> 8) * 0x1p-24F,
                                                     KWKeyFramedChannel::hermiteDataFrom(&shape),
                                                     KWTime(static_cast<float>(k) * 0.04F));
        }
        element->addChannelToGroupNamed(channel, "Hundred " + std::to_string(c / 100 + 1));
    }
    document.addElement(element);
    return document;
}

std::vector<SampleDocument> sampleDocuments() {
    constexpr auto binary = KWDocument::Form::binary;
    return {{"bouncing-ball.kwdoc", bouncingBall().data(binary)},
            {"wave.kwdoc", waves().data(binary)},
            {"light-show.kwdoc", lightShow().data(binary)},
            {"hard-curves-museum.kwdoc", hardCurvesMuseum().data(binary)},
            {"irregular-museum.kwdoc", irregularMuseum()}};
}
