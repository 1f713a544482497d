#pragma once

#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnknownObject.h>

#include <filesystem>
#include <memory>
#include <vector>

/// Reads what a sequential archiver wrote, here or on the platform, in either byte order.
///
/// Values are read in the order and with the types they were written with; a number may be read in
/// another width. Everything that is wrong with an archive raises KWArchiveError with file, offset
/// and the classes on the way.
class KW_EXPORT KWUnarchiver : public KWCoder {
  public:
    using Options = KWUnarchivingOptions;

    /// Whether bytes start as a sequential archive does.
    static bool isArchive(std::span<const std::byte> bytes);

    /// Reads the header. The bytes must live as long as the unarchiver.
    explicit KWUnarchiver(std::span<const std::byte> bytes, Options options = {},
                          std::string file = {});
    ~KWUnarchiver() override;

    /// The first value of the archive, which must be an object value: nil, a value or an object.
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

    /// Whether the archive was written on a big-endian machine.
    bool isBigEndian() const;
    bool isAtEnd() const;

    /// Whatever stands next, with its types in the key and its values in the items.
    KWArchiveField decodeAnything();

    bool allowsKeyedCoding() const override { return false; }
    /// The version the class had when the archive was written, once an object of it has been met;
    /// KWNotFound for a class that has not.
    std::int64_t versionForClassName(std::string_view className) const override;

    KWArchiveValue decodeObject() override;
    KWArchiveValue decodeBackPointer() override;
    void decodeValuesOfObjCTypesAt(const char* types,
                                   std::initializer_list<void*> addresses) override;
    void decodeArrayOfObjCTypeCountAt(const char* type, std::uint32_t count,
                                      void* address) override;
    KWData decodeBytes() override;
    KWData decodeDataObject() override;

    bool decodeFloats(std::vector<float>& list) override;
    bool decodeRealObjects(std::vector<float>& list, const KWRealClass& aClass) override;
    bool decodeRecords(std::vector<std::byte>& list, std::size_t recordSize) override;

    void spendMemory(std::uint64_t bytes) override;

    /// For the initWithCoder of a class that reads what it cannot use; `key` names it, or is empty.
    [[noreturn]] void failDecoding(const std::string& reason, std::string_view key) const override;

  private:
    std::unique_ptr<class KWTypedStreamReader> _reader;
};
