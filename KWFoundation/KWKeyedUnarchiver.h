#pragma once

#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWPropertyList.h>

#include <filesystem>
#include <memory>

struct KWKeyedArchiveReader;

/// How an archive is read.
struct KWUnarchivingOptions {
    /// Keep objects of unregistered classes as KWUnknownObject, or as the stand-in of their nearest
    /// registered superclass that has one. Without it an unknown class is an error.
    bool keepsUnknownObjects = false;
    /// Take every object as one of a class that nobody knows, also those of the platform's own
    /// classes: the archive as it stands. For KWUnarchiver, which reads sequential archives;
    /// KWKeyedUnarchiver ignores it.
    bool knowsNoClasses = false;
};

/// Reads what a keyed archiver wrote, binary or XML, here or on the platform.
///
/// An object is known before its contents are read, so that parts may refer to their whole: an
/// initWithCoder that decodes such a reference gets the object unfinished and only keeps it.
///
/// Everything that is wrong with an archive raises KWArchiveError with file, offset and key path.
class KW_EXPORT KWKeyedUnarchiver : public KWCoder {
  public:
    using Options = KWUnarchivingOptions;

    /// Reads the archive's frame. The bytes must live as long as the unarchiver.
    explicit KWKeyedUnarchiver(std::span<const std::byte> bytes, Options options = {},
                               std::string file = {});
    explicit KWKeyedUnarchiver(KWPropertyList list, Options options = {});
    ~KWKeyedUnarchiver() override;

    /// The value under the top key "root"; nil when that is nil.
    static KWArchiveValue unarchiveValueWithData(std::span<const std::byte> bytes,
                                                 Options options = {}, std::string file = {});
    static KWArchiveValue unarchiveValueWithFile(const std::filesystem::path& path,
                                                 Options options = {});
    /// The same, and an error unless it is an object.
    static std::shared_ptr<KWObject> unarchiveObjectWithData(std::span<const std::byte> bytes,
                                                             Options options = {},
                                                             std::string file = {});
    static std::shared_ptr<KWObject> unarchiveObjectWithFile(const std::filesystem::path& path,
                                                             Options options = {});

    /// The form that was read.
    KWPropertyList::Format format() const;
    /// The keys at the top, in the archive's order.
    std::vector<std::string> topKeys() const;

    bool allowsKeyedCoding() const override { return true; }

    bool containsValueForKey(std::string_view key) const override;
    KWArchiveValue decodeObjectForKey(std::string_view key) override;
    KWArchiveValue decodeBackPointerForKey(std::string_view key) override;
    bool decodeBoolForKey(std::string_view key) override;
    std::int32_t decodeInt32ForKey(std::string_view key) override;
    std::int64_t decodeInt64ForKey(std::string_view key) override;
    float decodeFloatForKey(std::string_view key) override;
    double decodeDoubleForKey(std::string_view key) override;
    KWData decodeBytesForKey(std::string_view key) override;

    bool decodeFloatsForKey(std::vector<float>& list, std::string_view key) override;
    bool decodeRealObjectsForKey(std::vector<float>& list, const KWRealClass& aClass,
                                 std::string_view key) override;
    bool decodeRecordsForKey(std::vector<std::byte>& list, std::size_t recordSize,
                             std::string_view key) override;

    void spendMemory(std::uint64_t bytes) override;

    /// For the initWithCoder of a class that finds what it cannot use under the key.
    [[noreturn]] void failDecoding(const std::string& reason, std::string_view key) const override;

  private:
    std::unique_ptr<KWKeyedArchiveReader> _reader;
};
