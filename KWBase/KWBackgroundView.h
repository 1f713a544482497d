#pragma once

#include <KWBase/KWImageBackground.h>
#include <KWFoundation/KWExport.h>

#include <QWidget>
#include <array>
#include <cstdint>
#include <memory>

/// A plain view that fills itself with a background, and with none draws nothing. Hosts put their
/// own views into it.
class KW_EXPORT KWBackgroundView : public QWidget {
    Q_OBJECT
    Q_PROPERTY(std::shared_ptr<KWImageBackground> background READ background WRITE setBackground
                   NOTIFY backgroundChanged)

  public:
    explicit KWBackgroundView(QWidget* parent = nullptr);
    explicit KWBackgroundView(const QRect& frame, QWidget* parent = nullptr);

    /// Null for none.
    const std::shared_ptr<KWImageBackground>& background() const { return _background; }
    /// Draws the view anew.
    void setBackground(const std::shared_ptr<KWImageBackground>& background);
    /// Sets a new background made of these; KWImageBackground tells what they mean.
    void setImageCutsDrawsCenterRegion(const QImage& image, const std::array<std::int32_t, 4>& cuts,
                                       bool drawsCenterRegion);

    /// Draws the background into the view's whole bounds; nothing when they are too small for it.
    virtual void drawRect(QPainter& painter, const QRectF& rect);

  Q_SIGNALS:
    void backgroundChanged();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    std::shared_ptr<KWImageBackground> _background;
};
