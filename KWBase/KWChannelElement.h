#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>

#include <memory>
#include <string>

class KWChannelArray;

/// A host's thing with channels, such as a lamp or a sprite: what outlines list and documents hold.
class KW_EXPORT KWChannelElement : public KWObject {
  public:
    static const KWClass& classObject();

    virtual std::string name() const = 0;
    /// Null for an element without channels.
    virtual std::shared_ptr<KWChannelArray> channelArray() const = 0;
};
