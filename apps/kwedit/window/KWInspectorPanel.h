#pragma once
#include <QWidget>
#include <apps/kwedit/KWEditDocument.h>
class KWEditTransport;
class KWInspectorPanel : public QWidget { public: KWInspectorPanel(KWEditDocument&, KWEditTransport&, QWidget* p = nullptr) : QWidget(p) {} 
 void setElements(const std::vector<std::shared_ptr<KWElement>>&) {} bool restoreState(const QByteArray&) { return true; } QByteArray saveState() const { return {}; } };
