#pragma once

#include <KWDesktop/KWChannelEditSource.h>
#include <KWFoundation/KWExport.h>

#include <QObject>
#include <QString>
#include <memory>

/// Makes what a controller does to channels undoable, in steps as the user made them. A host
/// attaches one to each of its controllers; it is all that undo in them takes, provided that the
/// channels' owners have undo managers.
///
/// A gesture in the curve view is bracketed with manipulation, and becomes one step when it has
/// changed keys. A drag of a shape's slider is one step that puts back the shapes it began with.
/// Expressions, values of constant channels and modes register nothing themselves and are put back
/// to what they were. Replacements are left to the owner when it registers their inverse, which it
/// has to do with a manager in a std::shared_ptr to be noticed; for one that does not, the old
/// channel is put back through replaceChannelWith. What changes nothing leaves no step.
///
/// The steps outlive the recorder.
class KW_EXPORT KWChannelUndoRecorder : public QObject {
    Q_OBJECT

  public:
    /// Records until either of the two is gone.
    explicit KWChannelUndoRecorder(KWChannelEditSource& source, QObject* parent = nullptr);
    /// An edit that is under way ends as a step of its own.
    ~KWChannelUndoRecorder() override;

    /// What a menu shows behind "Undo" for a step of that kind.
    static QString actionName(KWChannelEdit edit);

  private:
    struct Before;

    void willEdit(KWChannelEdit edit, const std::shared_ptr<KWChannel>& channel);
    void didEdit(const std::shared_ptr<KWChannel>& channel);
    void finish();

    std::unique_ptr<Before> _before; ///< null while no edit is under way
};
