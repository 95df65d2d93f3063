// The application's QML logic (tests in qml/), run against simulated devices
// on the in-process wire. `simulator` lets a test look at or change a node.
#include "appengine.h"
#include "appfixture.h"
#include "vrnconfigtoolqml.h"

#include "simnode.h"

#include <QQmlContext>
#include <QSqlQuery>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QtQuickTest>

class Simulator : public QObject
{
    Q_OBJECT
public:
    /// The label node `number` holds.
    Q_INVOKABLE QString label(int number) const
    {
        SimNode* node = m_network->net.node(quint32(number));
        return node ? QString::fromUtf8(node->label()) : QString();
    }
    /// The groups node `number` belongs to (its slots that are not empty).
    Q_INVOKABLE QVariantList groups(int number) const
    {
        QVariantList out;
        if (SimNode* node = m_network->net.node(quint32(number)))
            for (quint32 group : node->groups())
                if (group != 0)
                    out.append(group);
        return out;
    }
    /// Adds `count` rows to the registry in one statement (node numbers
    /// from 0x100000 on, every kind, labels "Row <n>"), as a large network
    /// would leave it; the rows have no device behind them.
    Q_INVOKABLE void fillRegistry(int count)
    {
        QSqlQuery bulk(ObjectFactory::instance()->database());
        bulk.exec(QStringLiteral("WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n WHERE x < %1) "
                                 "INSERT INTO Devices(nodeID, type, label) SELECT 1048576 + x, 1 + x % 7, 'Row ' || x FROM n")
                      .arg(count));
    }
    /// Removes the rows `fillRegistry` added.
    Q_INVOKABLE void emptyRegistry()
    {
        QSqlQuery(ObjectFactory::instance()->database()).exec(QStringLiteral("DELETE FROM Devices WHERE nodeID > 1048576"));
    }
    /// Makes node `number` stop answering, as an unplugged device would.
    Q_INVOKABLE void unplug(int number, bool gone = true)
    {
        if (SimNode* node = m_network->net.node(quint32(number)))
            node->setSilent(gone);
    }
    /// Node numbers, in the order the nodes were added.
    Q_INVOKABLE QVariantList numbers() const
    {
        QVariantList out;
        for (SimNode* node : m_network->net.nodes())
            out.append(node->number());
        return out;
    }
    /// Opens another network of `devices` as the bus (the first one's wire
    /// goes with its bus), as the user opening another bus does.
    Q_INVOKABLE void openOtherBus(const QString& devices)
    {
        m_other.reset(new AppFixture::Network(devices, 20, QStringLiteral("loopback-qml-other")));
    }

public slots:
    void applicationAvailable()
    {
        AppFixture::redirectUserFolders(m_home);
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    }
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        if (!m_network) {
            // As the application does: the registry follows the bus.
            AppEngine::followBus();
            m_network.reset(new AppFixture::Network(QStringLiteral("std:3,motor:2,tx30:1,tx50dc:1,settingtool:1")));
        }
        VRNConfigToolQml::load(engine);
        engine->rootContext()->setContextProperty(QStringLiteral("simulator"), this);
        engine->rootContext()->setContextProperty(QStringLiteral("startBusUUID"), QString());
        engine->rootContext()->setContextProperty(QStringLiteral("appHelper"), new AppHelper(engine));
    }

    void cleanupTestCase()
    {
        m_other.reset();
        m_network.reset();
        AppFixture::destroySingletons();
    }

private:
    QTemporaryDir m_home;
    QScopedPointer<AppFixture::Network> m_network;
    QScopedPointer<AppFixture::Network> m_other;
};

QUICK_TEST_MAIN_WITH_SETUP(tst_appqml, Simulator)
#include "tst_appqml.moc"
