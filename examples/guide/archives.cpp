#include "Expect.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnarchiver.h>
#include <KWFoundation/KWUnknownObject.h>

#include <filesystem>
#include <fstream>

namespace {

std::shared_ptr<KWChannelArray> lamp() {
    auto channels = std::make_shared<KWChannelArray>();
    channels->addChannel(channelWithNameInitialValueColor<KWKeyFramedChannel>("glow", 0.5f, 1));
    return channels;
}

//! [class]
/// A class of our own in archives: a channel array with a name.
class Fixture final : public KWObject {
  public:
    static const KWClass& classObject() {
        static constinit KWClass theClass{"Fixture", &KWObject::classObject, 1,
                                          KWClass::make<Fixture>};
        return theClass;
    }
    const KWClass& isa() const override { return classObject(); }

    void encodeWithCoder(KWCoder& coder) const override {
        if (coder.allowsKeyedCoding()) {
            coder.encodeObjectForKey(name, "name");
            coder.encodeObjectForKey(channels, "channels");
        } else { // in a sequential archive the order is all there is
            coder.encodeObject(name);
            coder.encodeObject(channels);
        }
    }
    bool initWithCoder(KWCoder& coder) override {
        const bool isKeyed = coder.allowsKeyedCoding();
        const KWArchiveValue title =
            isKeyed ? coder.decodeObjectForKey("name") : coder.decodeObject();
        const KWArchiveValue list =
            isKeyed ? coder.decodeObjectForKey("channels") : coder.decodeObject();
        if (const auto* text = title.string())
            name = text->text;
        channels = std::dynamic_pointer_cast<KWChannelArray>(list.object());
        return true;
    }

    std::string name;
    std::shared_ptr<KWChannelArray> channels;
};
//! [class]

//! [open]
/// Reads a document of either form. Throws KWArchiveError, whose text names file, place and reason.
std::shared_ptr<KWObject> openDocument(const std::filesystem::path& path) {
    const KWUnarchivingOptions options{.keepsUnknownObjects = true};
    std::ifstream file(path, std::ios::binary);
    char start[16] = {};
    file.read(start, sizeof start);
    if (KWUnarchiver::isArchive(std::as_bytes(std::span(start))))
        return KWUnarchiver::unarchiveObjectWithFile(path, options);
    return KWKeyedUnarchiver::unarchiveObjectWithFile(path, options);
}
//! [open]

} // namespace

int main() {
    //! [write]
    const std::shared_ptr<KWChannelArray> channels = lamp();
    // Keyed: what new programs write. Binary, or XML for people to read.
    KWKeyedArchiver::archiveRootObjectToFile(channels, "lamp.plist");
    KWKeyedArchiver::archiveRootObjectToFile(channels, "lamp.xml", KWPropertyList::Format::xml);
    // Sequential: for programs that know nothing newer.
    KWArchiver::archiveRootObjectToFile(channels, "lamp.typedstream");
    //! [write]

    for (const char* name : {"lamp.plist", "lamp.xml", "lamp.typedstream"}) {
        const auto read = std::dynamic_pointer_cast<KWChannelArray>(openDocument(name));
        expect(read && read->channelCount() == 1, "what was written is read");
    }

    //! [register]
    KWRegisterClass(Fixture::classObject());
    const auto fixture = std::make_shared<Fixture>();
    fixture->name = "spot";
    fixture->channels = channels;
    KWKeyedArchiver::archiveRootObjectToFile(fixture, "spot.plist");
    //! [register]
    const auto spot = std::dynamic_pointer_cast<Fixture>(openDocument("spot.plist"));
    expect(spot && spot->name == "spot" && spot->channels, "a class of our own is read");

    //! [older]
    KWArchiver archiver;
    archiver.setVersionForClassName(1, "KWChannel"); // as of an older program
    archiver.encodeRootObject(channels);
    const KWData& bytes = archiver.archiverData();
    //! [older]
    expect(!bytes.empty(), "an older version is written");

    //! [damaged]
    try {
        openDocument("missing.plist");
    } catch (const KWArchiveError& error) {
        std::cout << error.what() << '\n'; // "missing.plist: No such file or directory"
    }
    //! [damaged]
}
