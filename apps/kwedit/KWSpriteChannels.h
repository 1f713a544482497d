#pragma once

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWChannelCursor.h>

#include <QStringList>
#include <array>
#include <optional>
#include <string>
#include <vector>

/// What a channel of a sprite, or of the stage, is for.
///
/// A channel is found by its name and the name of its group, small letters and capitals alike; of
/// several the first one in the element. "x", "y" count in the group "Position" and in none; "scale
/// x" and "scale y" also as "x" and "y" in the group "Scale". All others count in any group.
enum class KWSpriteRole {
    x,         ///< "x", metres to the right
    y,         ///< "y", metres upwards
    rotation,  ///< "rotation", radians, against the clock
    scale,     ///< "scale"
    scaleX,    ///< "scale x", times "scale"
    scaleY,    ///< "scale y", times "scale"
    squash,    ///< "squash", upwards from the foot, and as much narrower as it is higher
    shear,     ///< "shear", radians that the sprite leans to the right, from its foot
    opacity,   ///< "opacity", 0 to 1
    red,       ///< "red", 0 to 1, in place of the content's own color; tints pictures
    green,     ///< "green"
    blue,      ///< "blue"
    radius,    ///< "radius", metres: as high and wide as twice that
    width,     ///< "width", metres
    height,    ///< "height", metres; of the camera, in place of y
    movieTime, ///< "movie time", seconds in the movie; the time of the frame otherwise
    zoom,      ///< "zoom", of the camera
    pan,       ///< "pan", radians, the camera turned to the right
    tilt,      ///< "tilt", radians, the camera turned upwards
    count
};

/// The channels of one element, read at one time after the other.
class KWSpriteChannels {
  public:
    using Values = std::array<std::optional<float>, static_cast<std::size_t>(KWSpriteRole::count)>;

    KWSpriteChannels(const std::string& element, const KWChannelArray* array);

    /// Nothing for what has no channel, and for values that are not finite. What cannot be
    /// evaluated is named in `problems`, once.
    void evaluate(KWTime time, Values& values, QStringList& problems);

    /// The channel for a role; null for none.
    std::shared_ptr<KWChannel> channel(KWSpriteRole role) const;

    /// The name and group that a role's channel is made with, "" for no group.
    static std::pair<std::string, std::string> usualPlace(KWSpriteRole role);

  private:
    struct Bound {
        KWSpriteRole role;
        std::shared_ptr<KWChannel> channel;
        KWChannelCursor cursor;
        bool isBroken = false;
    };
    std::string _element;
    std::vector<Bound> _bound;
};
