// SPDX-License-Identifier: MIT
// The Qt Designer entries of the component's widgets and the collection that lists them.
#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <QIcon>
#include <QObject>

#include <functional>

namespace tessal {

// One widget in Designer's box: its class, header, group, icon and how it is created.
class TWidgetPlugin : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)
public:
    struct TEntry
    {
        QString ClassName;
        QString IncludeFile;
        QString ToolTip;
        QString DomXml;
        QIcon Icon;
        std::function<QWidget *(QWidget *parent)> Create;
    };

    explicit TWidgetPlugin(TEntry entry, QObject *parent = nullptr);

    QString name() const override { return m_Entry.ClassName; }
    QString group() const override { return QStringLiteral("Tessal"); }
    QString toolTip() const override { return m_Entry.ToolTip; }
    QString whatsThis() const override { return m_Entry.ToolTip; }
    QString includeFile() const override { return m_Entry.IncludeFile; }
    QIcon icon() const override { return m_Entry.Icon; }
    bool isContainer() const override { return false; }
    QWidget *createWidget(QWidget *parent) override { return m_Entry.Create(parent); }
    bool isInitialized() const override { return m_Initialized; }
    void initialize(QDesignerFormEditorInterface *core) override;
    QString domXml() const override { return m_Entry.DomXml; }

private:
    TEntry m_Entry;
    bool m_Initialized = false;
};

// The plugin Designer loads: the surface, the ruler, the ruler corner, the inspector grid
// and the component inspector, all in the group "Tessal".
class TTessalDesignerPlugins : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)
public:
    explicit TTessalDesignerPlugins(QObject *parent = nullptr);
    QList<QDesignerCustomWidgetInterface *> customWidgets() const override { return m_Widgets; }

private:
    QList<QDesignerCustomWidgetInterface *> m_Widgets;
};

} // namespace tessal
