#include "fixtures/TestTable.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <functional>

/// Keeps the layers: reads every source of `src/` and compares its includes and calls with what its place
/// in the house allows.
class tst_rules : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QDir root(VELMAR_SOURCE_DIR "/src");
        static const QRegularExpression include("^\\s*#\\s*include\\s*([<\"][^>\"]+)[>\"]",
                                                QRegularExpression::MultilineOption);
        static const QRegularExpression comment("//[^\\n]*|/\\*.*?\\*/",
                                                QRegularExpression::DotMatchesEverythingOption);
        QDirIterator it(root.path(), {"*.cpp", "*.h"}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            QFile file(it.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            Source source{root.relativeFilePath(file.fileName()), {}, QString::fromUtf8(file.readAll())};
            for (const auto &match : include.globalMatch(source.code))
                source.includes.append(match.captured(1));
            source.code.remove(comment);
            sources.append(source);
        }
        QVERIFY(sources.size() > 20);
    }

    void logicSeesQtCoreOnly()
    {
        const QDir coreHeaders(QStringLiteral(QT_CORE_HEADERS));
        QVERIFY(coreHeaders.exists("QString"));
        const auto isForeign = [&](const QString &include) {
            return include.startsWith("<Q") && !coreHeaders.exists(include.mid(1));
        };
        const auto offends = [&](const Source &source) {
            return !MayShow(source.path) &&
                   std::any_of(source.includes.begin(), source.includes.end(), isForeign);
        };
        QCOMPARE(Offenders(offends), QStringList());
    }

    void nobodyBelowIncludesAForm()
    {
        const auto isFree = [](const QString &path) {
            return path.contains("/forms/") || path.startsWith("programs/client/");
        };
        QCOMPARE(Including("\"(.*/forms/|ui_|frm)", isFree), QStringList());
    }

    void onlyProgramsIncludePlatform()
    {
        const auto isFree = [](const QString &path) {
            return path.startsWith("platform/") || path.startsWith("programs/");
        };
        QCOMPARE(Including("^\"platform/", isFree), QStringList());
    }

    void lowerLayersDoNotLookUp_data()
    {
        const TestTable<QString> row{"allowed"};
        row("core/", "core/");
        row("server/wire/", "core/|server/wire/");
        row("controls/", "core/|controls/");
        row("platform/", "core/|controls/|platform/");
        // The runs of the server room know the mailbox; the mailbox knows of no server.
        row("mailbox/", "core/|controls/|mailbox/|ui_");
        row("desktop/", "core/|controls/|mailbox/|desktop/|ui_");
        // Of the server, composing knows the one door through which faxes go.
        row("compose/", "core/|controls/|mailbox/|desktop/|compose/|server/FaxSender|ui_");
    }

    void lowerLayersDoNotLookUp()
    {
        QFETCH(QString, allowed);
        const auto isFree = [](const QString &path) { return !path.startsWith(QTest::currentDataTag()); };
        QCOMPARE(Including(QString("^\"(?!%1)[^\"]*/").arg(allowed), isFree), QStringList());
    }

    void onlyTheEventPumpTurnsTheLoop()
    {
        const auto isFree = [](const QString &path) {
            return path == "platform/QtEventPump.cpp" || IsCompanion(path);
        };
        QCOMPARE(Containing("\\b(processEvents|QEventLoop|waitFor[A-Z]\\w+)\\b", isFree), QStringList());
    }

    void onlyPlatformOpensBoxesAndDialogs()
    {
        const auto isFree = [](const QString &path) {
            return path.startsWith("platform/") || IsCompanion(path);
        };
        QCOMPARE(Containing("\\b(QMessageBox|QFileDialog|QFontDialog|QInputDialog)\\b", isFree),
                 QStringList());
        const auto mayExec = [&](const QString &path) {
            return isFree(path) || path.startsWith("programs/client/");
        };
        QCOMPARE(Containing("\\bexec\\s*\\(", mayExec), QStringList());
    }

    void onlyCoreAndLogicHoldSql()
    {
        const auto isFree = [](const QString &path) { return !MayShow(path) || IsCompanion(path); };
        const QString sql = "\"\\s*(?i:select|insert into|update|delete from|alter table|create table)\\s";
        QCOMPARE(Containing(sql, isFree), QStringList());
    }

    void aFormIsThreeFilesInOneFolder()
    {
        QDirIterator it(VELMAR_SOURCE_DIR "/src", {"frm*"}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo file(it.next());
            QCOMPARE(file.dir().dirName(), "forms");
            for (const char *ending : {".ui", ".h", ".cpp"})
                QVERIFY2(file.dir().exists(file.completeBaseName() + ending), qPrintable(file.filePath()));
        }
    }

private:
    struct Source
    {
        QString path; ///< relative to src/
        QStringList includes;
        QString code; ///< without comments
    };
    using IsFree = std::function<bool(const QString &path)>;

    static bool IsCompanion(const QString &path)
    {
        return path.startsWith("programs/") && !path.startsWith("programs/client/");
    }
    static bool MayShow(const QString &path)
    {
        return path.contains("/forms/") || path.startsWith("controls/") || path.startsWith("platform/") ||
               path.startsWith("programs/");
    }
    QStringList Offenders(const std::function<bool(const Source &)> &offends) const
    {
        QStringList found;
        for (const Source &source : sources) {
            if (offends(source))
                found.append(source.path);
        }
        return found;
    }
    QStringList Including(const QString &pattern, const IsFree &isFree) const
    {
        const QRegularExpression expression(pattern);
        return Offenders([&](const Source &source) {
            return !isFree(source.path) && !source.includes.filter(expression).isEmpty();
        });
    }
    QStringList Containing(const QString &pattern, const IsFree &isFree) const
    {
        const QRegularExpression expression(pattern);
        return Offenders(
            [&](const Source &source) { return !isFree(source.path) && source.code.contains(expression); });
    }

    QList<Source> sources;
};

QTEST_GUILESS_MAIN(tst_rules)
#include "tst_rules.moc"
