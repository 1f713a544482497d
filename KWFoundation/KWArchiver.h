#pragma once

#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWExport.h>

#include <filesystem>
#include <memory>
#include <string_view>

/// Writes values and objects in one fixed order, in the platform's sequential form: a stream that
/// starts with "streamtyped", in little-endian order.
///
/// Each object is written once and referred to by number from then on. A conditional object is
/// written where it is first met, if anything in the archive holds it unconditionally; to know
/// that, the whole graph is walked once before the first byte, so encodeWithCoder is called twice.
///
/// The form has one oddity of its own: the sign of a real -0.0 is lost.
class KW_EXPORT KWArchiver : public KWCoder {
  public:
    KWArchiver();
    ~KWArchiver() override;

    /// One value as a whole archive. KWArchiveError (unsupported) for objects nested more than
    /// KWArchiveMaximumDepth deep, and for contents that came from a keyed archive and whose class
    /// is not known; what encodeWithCoder throws passes through.
    static KWData archivedDataWithRootObject(const KWArchiveValue& root);
    /// The same into a file, whole or not at all.
    static void archiveRootObjectToFile(const KWArchiveValue& root,
                                        const std::filesystem::path& path);

    /// Has a class written as of an older version, for programs that know no newer one. The class
    /// asks versionForClassName() as it writes and leaves out what that version did not have. Call
    /// it before anything is encoded.
    void setVersionForClassName(std::int32_t version, std::string_view className);

    /// The whole of a graph; conditional objects can be written only in here.
    void encodeRootObject(const KWArchiveValue& root);

    /// What has been written so far.
    const KWData& archiverData() const;

    bool allowsKeyedCoding() const override { return false; }
    /// The version that the class is written as.
    std::int64_t versionForClassName(std::string_view className) const override;

    void encodeObject(const KWArchiveValue& value) override;
    /// std::logic_error outside encodeRootObject.
    void encodeConditionalObject(const std::shared_ptr<KWObject>& object) override;
    void encodeValuesOfObjCTypesAt(const char* types,
                                   std::initializer_list<const void*> addresses) override;
    void encodeArrayOfObjCTypeCountAt(const char* type, std::uint32_t count,
                                      const void* address) override;
    void encodeBytes(std::span<const std::byte> bytes) override;
    void encodeDataObject(std::span<const std::byte> bytes) override;

    void encodeFloats(std::span<const float> list) override;
    void encodeRealObjects(std::span<const float> list, const KWRealClass& aClass) override;
    void encodeRecords(std::span<const std::byte> list, std::size_t recordSize) override;

  private:
    std::unique_ptr<class KWTypedStreamWriter> _writer;
};
