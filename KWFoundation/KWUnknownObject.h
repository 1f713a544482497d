#pragma once

#include <KWFoundation/KWArchiveValue.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// One entry of an object whose class nobody here knows, just as it stood in the archive.
struct KWArchiveField {
    enum class Form {
        reference,  ///< the value stands elsewhere in the archive and may be shared
        inlined,    ///< a number, string or bytes in the object itself
        list,       ///< a list in the object itself; the items are in `items`, their keys empty
        dictionary, ///< keys with values in the object itself; in `items`
    };

    std::string key;
    Form form = Form::reference;
    KWArchiveValue value;
    std::vector<KWArchiveField> items;
};

/// Stands for an object of a class that is not registered: it keeps the class's names and all it
/// held, and is written back unchanged. A reference that closes a cycle does not keep its object
/// alive.
class KW_EXPORT KWUnknownObject final : public KWObject {
  public:
    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }
    const KWUnknownObject* unknownContents() const override { return this; }

    /// Its class's name, then its superclasses' up to the root's.
    const std::vector<std::string>& classChain() const { return _classChain; }
    const std::string& className() const { return _classChain.front(); }
    /// Names of classes that the writer offered in place of an unknown one; mostly none.
    const std::vector<std::string>& classHints() const { return _classHints; }
    /// What it held, in the archive's order, keys as they are stored.
    const std::vector<KWArchiveField>& fields() const { return _fields; }

    /// The field under a key, or null.
    const KWArchiveField* field(std::string_view key) const;

    /// Of a sequential archive the versions, as many as there are names; of a keyed one none.
    const std::vector<std::int32_t>& classVersions() const { return _classVersions; }
    /// Whether it comes from a sequential archive: each field is then what one call wrote, its
    /// types in the key, its values in the items. Such contents go into no keyed archive, nor the
    /// reverse.
    bool isSequential() const { return !_classVersions.empty(); }

    void setClassVersions(std::vector<std::int32_t> versions) {
        _classVersions = std::move(versions);
    }
    void setClassChain(std::vector<std::string> names) { _classChain = std::move(names); }
    void setClassHints(std::vector<std::string> names) { _classHints = std::move(names); }
    void setFields(std::vector<KWArchiveField> fields) { _fields = std::move(fields); }

  private:
    std::vector<std::string> _classChain{std::string()};
    std::vector<std::int32_t> _classVersions;
    std::vector<std::string> _classHints;
    std::vector<KWArchiveField> _fields;
};
