#pragma once

#include <apps/kwedit/KWEditDocument.h>

#include <QCoreApplication>
#include <QPointF>
#include <QStringList>
#include <memory>
#include <vector>

/// Moves sprites by their channels "x" and "y" at one time, as one step that can be undone, "Move".
/// A keyframed channel gets a key at the time, or the one that is there another value; a constant
/// one another value. Others are left where they are.
///
/// As long as it lives the document's undo manager has a group open, so that nothing can be undone
/// meanwhile.
class KWEditSpriteMove {
    Q_DECLARE_TR_FUNCTIONS(KWEditSpriteMove)

  public:
    KWEditSpriteMove(KWEditDocument& document,
                     const std::vector<std::shared_ptr<KWElement>>& elements, KWTime time);
    /// Puts everything back that was not committed.
    ~KWEditSpriteMove();
    KWEditSpriteMove(const KWEditSpriteMove&) = delete;
    KWEditSpriteMove& operator=(const KWEditSpriteMove&) = delete;

    /// Whether there is a channel to move anything with.
    bool canMove() const { return !_axes.empty(); }
    /// A sentence for each sprite that stays, or moves along one axis only, and why.
    const QStringList& refusals() const { return _refusals; }
    KWTime time() const { return _time; }

    /// From where they were at the beginning, in metres. What a sprite moves along is rounded to a
    /// multiple of `step`, which is above 0.
    void moveBy(const QPointF& metres, double step);
    /// Makes the step; none where nothing has moved.
    void commit();

  private:
    struct Axis;

    void add(const KWElement& element, const std::shared_ptr<KWChannel>& channel, bool isX,
             QStringList& missing, QStringList& computed);
    void putBack();
    void release();

    KWEditDocument& _document;
    KWTime _time;
    std::vector<std::unique_ptr<Axis>> _axes;
    QStringList _refusals;
    std::shared_ptr<KWEditDocument::Step> _step;
};
