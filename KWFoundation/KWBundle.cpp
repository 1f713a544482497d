#include <KWFoundation/KWBundle.h>
#include <KWFoundation/KWException.h>
#include <KWFoundation/KWLog.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

constexpr std::string_view fallbackLanguage = "en";

struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept {
        return std::hash<std::string_view>()(text);
    }
};

template <class Value>
using Map = std::unordered_map<std::string, Value, Hash, std::equal_to<>>;

using Texts = Map<std::string>;

template <class Value>
const Value* valueForKey(const Map<Value>& map, std::string_view key) {
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
}

/// "de" for "de_AT.UTF-8", "DE" and "de-AT".
std::string languageOf(std::string_view name) {
    std::string language(name.substr(0, name.find_first_of("_-.@")));
    for (char& c : language)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    if (language == "c" || language == "posix")
        return std::string(fallbackLanguage);
    return language;
}

std::string languageOfEnvironment() {
    for (const char* variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* setting = std::getenv(variable);
        std::string_view names = setting ? setting : "";
        // LANGUAGE may hold several, parted by colons; the first one that is not empty counts.
        while (!names.empty()) {
            const std::size_t end = std::min(names.find(':'), names.size());
            if (std::string language = languageOf(names.substr(0, end)); !language.empty())
                return language;
            names.remove_prefix(std::min(end + 1, names.size()));
        }
    }
    return std::string(fallbackLanguage);
}

/// Reads the text of a strings file.
class StringsParser {
  public:
    explicit StringsParser(std::string_view text) : _text(text) {
        if (_text.starts_with("\xEF\xBB\xBF"))
            _text.remove_prefix(3);
    }

    Texts parse() {
        Texts texts;
        for (skipBlank(); !_text.empty(); skipBlank()) {
            std::string key = quoted();
            expect('=');
            std::string value = quoted();
            expect(';');
            texts.insert_or_assign(std::move(key), std::move(value));
        }
        return texts;
    }

  private:
    [[noreturn]] void fail(const std::string& reason) const {
        throw KWException("Malformed strings table",
                          "line " + std::to_string(_line) + ": " + reason);
    }

    char take() {
        const char c = _text.front();
        _text.remove_prefix(1);
        if (c == '\n')
            ++_line;
        return c;
    }

    void skipBlank() {
        while (!_text.empty()) {
            if (_text.starts_with("/*"))
                skipComment();
            else if (std::string_view(" \t\r\n").find(_text.front()) != std::string_view::npos)
                take();
            else
                return;
        }
    }

    void skipComment() {
        const std::size_t end = _text.find("*/", 2);
        if (end == std::string_view::npos)
            fail("a comment that does not end");
        for (std::size_t i = 0; i < end + 2; ++i)
            take();
    }

    void expect(char wanted) {
        skipBlank();
        if (_text.empty() || _text.front() != wanted)
            fail(std::string("'") + wanted + "' expected");
        take();
    }

    std::string quoted() {
        skipBlank();
        if (_text.empty() || _text.front() != '"')
            fail("a text in quotation marks expected");
        // Where it begins is where to look for the missing end.
        const StringsParser start = *this;
        take();
        std::string value;
        while (!_text.empty()) {
            char c = take();
            if (c == '"')
                return value;
            if (c == '\\')
                c = escaped();
            value.push_back(c);
        }
        start.fail("a text that does not end");
    }

    char escaped() {
        switch (_text.empty() ? '\0' : _text.front()) {
        case '"':
        case '\\':
            return take();
        case 'n':
            take();
            return '\n';
        case 't':
            take();
            return '\t';
        default:
            fail("an unknown escape");
        }
    }

    std::string_view _text;
    std::size_t _line = 1;
};

} // namespace

struct KWBundle::Tables {
    mutable std::shared_mutex mutex; ///< for all but the loaders
    Map<Map<Texts>> tables;          ///< by language, then by table
    std::string chosenLanguage;      ///< empty for the environment's
    std::string environmentLanguage; ///< empty until looked up

    std::mutex loaderMutex; ///< held while loaders run, so that nobody looks up too early
    std::vector<void (*)(KWBundle&)> loaders;
    std::atomic<bool> hasLoaders = false;

    const std::string* find(std::string_view language, std::string_view table,
                            std::string_view key) const {
        const auto* ofLanguage = valueForKey(tables, language);
        const auto* texts = ofLanguage ? valueForKey(*ofLanguage, table) : nullptr;
        return texts ? valueForKey(*texts, key) : nullptr;
    }

    void runLoaders(KWBundle& bundle);
};

void KWBundle::Tables::runLoaders(KWBundle& bundle) {
    if (!hasLoaders.load(std::memory_order_acquire))
        return;
    const std::lock_guard lock(loaderMutex);
    for (const auto loader : std::exchange(loaders, {})) {
        try {
            loader(bundle);
        } catch (const std::exception& error) {
            KWLog(std::string("A table of texts could not be loaded: ") + error.what());
        }
    }
    hasLoaders.store(false, std::memory_order_release);
}

KWBundle::KWBundle() : _tables(new Tables) {}

KWBundle::~KWBundle() {
    delete _tables;
}

KWBundle& KWBundle::frameworkBundle() {
    // Never destroyed: texts may be asked for at the program's end.
    static KWBundle& bundle = *new KWBundle;
    return bundle;
}

std::string KWBundle::localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                      std::string_view table) const {
    // Loading late is no change that anybody could see.
    _tables->runLoaders(frameworkBundle());
    const std::string preferred = language();
    const std::shared_lock lock(_tables->mutex);
    const std::string* text = _tables->find(preferred, table, key);
    if (!text)
        text = _tables->find(fallbackLanguage, table, key);
    if (text)
        return *text;
    return std::string(value.empty() ? key : value);
}

std::string KWBundle::language() const {
    {
        const std::shared_lock lock(_tables->mutex);
        if (!_tables->chosenLanguage.empty())
            return _tables->chosenLanguage;
        if (!_tables->environmentLanguage.empty())
            return _tables->environmentLanguage;
    }
    const std::unique_lock lock(_tables->mutex);
    if (_tables->environmentLanguage.empty())
        _tables->environmentLanguage = languageOfEnvironment();
    return _tables->environmentLanguage;
}

void KWBundle::setLanguage(std::string_view language) {
    const std::unique_lock lock(_tables->mutex);
    _tables->chosenLanguage = languageOf(language);
}

void KWBundle::addTable(std::string_view language, std::string_view table, std::string_view text) {
    Texts added = StringsParser(text).parse();
    const std::unique_lock lock(_tables->mutex);
    Texts& texts = _tables->tables[languageOf(language)][std::string(table)];
    // What is added takes the place of what was there.
    added.merge(texts);
    texts = std::move(added);
}

void KWBundle::addTableLoader(void (*loader)(KWBundle&)) {
    const std::lock_guard lock(_tables->loaderMutex);
    _tables->loaders.push_back(loader);
    _tables->hasLoaders.store(true, std::memory_order_release);
}
