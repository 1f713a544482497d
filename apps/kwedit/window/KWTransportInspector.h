#pragma once

#include <apps/kwedit/window/KWEditStageTiming.h>
#include <apps/kwedit/window/KWInspector.h>

#include <QTimer>

class KWTimeField;

/// The rate and the range of the document's stage, whether the transport loops, and how it keeps
/// up. All three must outlive it.
class KWTransportInspector : public KWInspector {
    Q_OBJECT

  public:
    KWTransportInspector(KWEditDocument& document, KWEditTransport& transport,
                         KWEditStageTiming& timing, QWidget* parent = nullptr);

  public Q_SLOTS:
    /// Whether times are frames; seconds at first.
    void setShowsFrames(bool showsFrames);

  private:
    void follow();
    void showMeasured();

    QPointer<KWEditDocument> _document;
    QPointer<KWEditTransport> _transport;
    KWValueField* _rate;
    KWTimeField* _from;
    KWTimeField* _to;
    QLabel* _length;
    QCheckBox* _loop;
    QLabel* _measured;
    QLabel* _dropped;
    QTimer _timer; ///< while it plays
};
