#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

// What notifications and key-value observing have in common: a list of those to be called, which
// the calls themselves may change, nest and end.

/// The base of an entry. A type derived from it has
///
///     bool isDead() const;   // not to be called any more
///     void release();        // drops what is held for the call; may run any code
struct KWCallEntry {
    /// Rising in order of connection, also across lists that are called together.
    std::uint64_t sequence = 0;
    bool isConnected = true;
};

/// A list of entries in order of connection. While it is walked, entries are only appended and
/// marked; what is dead goes when no walk is under way. Lives in a std::shared_ptr.
template <class Entry>
class KWCallList {
  public:
    void append(std::shared_ptr<Entry> entry) {
        if (_walks == 0 && _entries.size() >= _crowded) {
            compact();
            _crowded = 2 * _entries.size() + 8;
        }
        _entries.push_back(std::move(entry));
    }

    void remove(Entry& entry) {
        if (!entry.isConnected)
            return;
        entry.isConnected = false;
        ++_disconnected;
        // An entry may be removed by its own call, so nothing of it goes before the walk ends.
        if (_walks > 0)
            return;
        // Many removals in a row must not each move the rest of the list.
        const bool isSparse = 2 * _disconnected > _entries.size();
        entry.release();
        if (isSparse && _walks == 0)
            compact();
    }

    /// Ends all entries for good, also for a walk under way.
    void close() {
        _isClosed = true;
        for (const auto& entry : _entries)
            entry->isConnected = false;
        _disconnected = _entries.size();
        if (_walks == 0)
            compact();
    }
    bool isClosed() const { return _isClosed; }

    /// Whether there is nothing to walk over, be it dead or alive.
    bool hasNoEntries() const { return _entries.empty(); }

    bool isEmpty() const {
        return std::all_of(_entries.begin(), _entries.end(),
                           [](const auto& entry) { return entry->isDead(); });
    }

    /// The latest entry that is alive and that `matches` accepts, or null.
    template <class Predicate>
    Entry* latest(const Predicate& matches) {
        const auto found =
            std::find_if(_entries.rbegin(), _entries.rend(), [&matches](const auto& entry) {
                return !entry->isDead() && matches(*entry);
            });
        return found == _entries.rend() ? nullptr : found->get();
    }

    /// One pass over the entries that are there when it begins.
    class Walk {
      public:
        explicit Walk(std::shared_ptr<KWCallList> list)
            : _list(std::move(list)), _end(_list ? _list->_entries.size() : 0) {
            if (_list)
                ++_list->_walks;
        }
        ~Walk() {
            if (_list && --_list->_walks == 0 && _list->_disconnected > 0)
                _list->compact();
        }
        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;

        /// The next entry that is alive, or null.
        Entry* peek() {
            for (; _index < _end; ++_index) {
                Entry& entry = *_list->_entries[_index];
                if (!entry.isDead())
                    return &entry;
                _list->remove(entry);
            }
            return nullptr;
        }
        void advance() { ++_index; }

      private:
        std::shared_ptr<KWCallList> _list;
        std::size_t _index = 0;
        std::size_t _end;
    };

  private:
    void compact() {
        const auto firstDead = std::stable_partition(
            _entries.begin(), _entries.end(), [](const auto& entry) { return !entry->isDead(); });
        const std::vector<std::shared_ptr<Entry>> dead(std::make_move_iterator(firstDead),
                                                       std::make_move_iterator(_entries.end()));
        _entries.erase(firstDead, _entries.end());
        _disconnected = 0;
        // Releasing runs code that may use this list, which is whole again by now.
        for (const auto& entry : dead) {
            entry->isConnected = false;
            entry->release();
        }
    }

    std::vector<std::shared_ptr<Entry>> _entries;
    std::size_t _disconnected = 0; ///< entries that are still held, but not connected
    std::size_t _crowded = 8;      ///< the size at which appending looks for dead entries
    std::size_t _walks = 0;
    bool _isClosed = false;
};

/// Calls the entries of one or two lists (either may be null) that are connected now, in order of
/// connection, leaving out those that die meanwhile. Answers the first exception that a call threw.
template <class Entry, class Call>
[[nodiscard]] std::exception_ptr KWCallEntries(std::shared_ptr<KWCallList<Entry>> first,
                                               std::shared_ptr<KWCallList<Entry>> second,
                                               const Call& call) {
    typename KWCallList<Entry>::Walk walk(std::move(first));
    typename KWCallList<Entry>::Walk otherWalk(std::move(second));
    std::exception_ptr exception;
    for (;;) {
        Entry* entry = walk.peek();
        Entry* other = otherWalk.peek();
        const bool takesOther = other && (!entry || other->sequence < entry->sequence);
        if (takesOther)
            entry = other;
        if (!entry)
            return exception;
        (takesOther ? otherWalk : walk).advance();
        try {
            call(*entry);
        } catch (...) {
            if (!exception)
                exception = std::current_exception();
        }
    }
}
