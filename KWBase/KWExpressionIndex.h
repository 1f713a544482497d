#pragma once

#include <KWBase/KWExpressionScan.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// What every part of a text would be split at, without scanning the part.
///
/// The text is one that a scan of the whole has not refused, and the parts are those that come of
/// splitting it. As a rule they begin and end between the words of the whole, so that words need to
/// be found only once; and what a scan takes after it has taken one operator or function depends on
/// nothing but that. Those successors form a forest, in which jumps find the last one of a part in
/// logarithmic time. Building takes a few scans of the text.
class KWExpressionIndex {
  public:
    /// The first `length` bytes of a text; from `end` on they count as zero bytes.
    KWExpressionIndex(const char* bytes, int length, int end);

    /// Whether the part begins between two words. One that begins inside of a word, as after the
    /// first letter of a function behind a negation in parentheses, is not known here.
    bool knows(KWExpressionScanning::View view) const {
        return _places[static_cast<std::size_t>(view.begin)].isWord;
    }

    // Of parts that are known:

    /// Where a scan of the part would give up; -1 for nowhere.
    int refusalIn(KWExpressionScanning::View view) const;
    /// How many parentheses are still open at the end of the part.
    int depthOver(KWExpressionScanning::View view) const;
    /// The best split of the part.
    KWExpressionScanning::Candidate splitOf(KWExpressionScanning::View view) const;

  private:
    /// A byte of the text, or its end. Of the bytes of a word only the first counts.
    struct Place {
        bool isWord = false;
        int depth = 0;     ///< before it
        int digit = -1;    ///< the first one from here on
        int word = -1;     ///< the first one from here on that is looked up
        int variable = -1; ///< the last one before
        int taken = 0;     ///< the first operator or function that a scan from here takes

        // Of a place that is an operator or a function; of others `priority` is `nothing`.
        KWExpressionScanning::Priority priority = KWExpressionScanning::nothing;
        std::int16_t code = 0; ///< also of a variable
        std::int16_t nameLength = 0;
        bool isNegation = false;
        bool isNameKept = false; ///< it counts as the word before it
        int next = 0;            ///< what a scan takes after this
        int jump = 0;            ///< what it takes some time later
        int jumpSum = -1;        ///< the last sum or negation behind this, up to there
        int level = 0;           ///< how many it takes after this in all
    };

    void findWords(const char* bytes, int end);
    int wordLengthAt(int i, const char* bytes, int end, KWExpressionScanning::Name& name);
    void findSuccessors();
    void link(int i, int next);

    int keyOf(const Place& place) const { return place.depth * 8 + place.priority; }
    int sumAt(int i, int before) const;
    int nearest(const std::vector<int>& stack, int key) const;

    int _length;
    int _refusal;
    std::vector<Place> _places;
    std::vector<int> _words; ///< where the words of the text and its other bytes begin
};
