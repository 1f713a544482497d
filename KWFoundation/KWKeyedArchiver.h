#pragma once

#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWPropertyList.h>

#include <filesystem>
#include <memory>

/// Writes values and objects with keys, in the property-list form of the platform - the desktop
/// platform whose archives these are: a dictionary of "$version", "$top", "$archiver" and
/// "$objects".
///
/// Each object is written once and referred to from then on, so graphs with shared parts and cycles
/// come back as they were. KWArchiveError (unsupported) for objects nested more than
/// KWArchiveMaximumDepth deep; what encodeWithCoder throws passes through.
class KW_EXPORT KWKeyedArchiver : public KWCoder {
  public:
    using Format = KWPropertyList::Format;

    KWKeyedArchiver();
    ~KWKeyedArchiver() override;

    /// One value as a whole archive, under the top key "root".
    static KWData archivedDataWithRootObject(const KWArchiveValue& root,
                                             Format format = Format::binary);
    /// The same into a file, whole or not at all.
    static void archiveRootObjectToFile(const KWArchiveValue& root,
                                        const std::filesystem::path& path,
                                        Format format = Format::binary);

    /// Ends the archive and answers it; what was encoded on the archiver itself becomes the top
    /// keys. std::logic_error when called twice.
    KWData finishEncoding(Format format = Format::binary);
    /// The same as a property list.
    KWPropertyList finishPropertyList();

    bool allowsKeyedCoding() const override { return true; }

    void encodeObjectForKey(const KWArchiveValue& value, std::string_view key) override;
    void encodeConditionalObjectForKey(const std::shared_ptr<KWObject>& object,
                                       std::string_view key) override;
    void encodeBoolForKey(bool value, std::string_view key) override;
    void encodeInt32ForKey(std::int32_t value, std::string_view key) override;
    void encodeInt64ForKey(std::int64_t value, std::string_view key) override;
    void encodeFloatForKey(float value, std::string_view key) override;
    void encodeDoubleForKey(double value, std::string_view key) override;
    void encodeBytesForKey(std::span<const std::byte> bytes, std::string_view key) override;

    void encodeFloatsForKey(std::span<const float> list, std::string_view key) override;
    void encodeRealObjectsForKey(std::span<const float> list, const KWRealClass& aClass,
                                 std::string_view key) override;
    void encodeRecordsForKey(std::span<const std::byte> list, std::size_t recordSize,
                             std::string_view key) override;

  private:
    struct Impl;
    std::unique_ptr<Impl> _impl;
};
