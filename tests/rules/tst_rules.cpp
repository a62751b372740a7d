#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

/// Keeps the layers: reads every source of `src/` and compares its includes and calls with what its place
/// in the house allows.
class tst_rules : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QDir root(QStringLiteral(VELMAR_SOURCE_DIR "/src"));
        static const QRegularExpression include(QStringLiteral("^\\s*#\\s*include\\s*([<\"][^>\"]+)[>\"]"),
                                                QRegularExpression::MultilineOption);
        static const QRegularExpression comment(QStringLiteral("//[^\\n]*|/\\*.*?\\*/"),
                                                QRegularExpression::DotMatchesEverythingOption);
        QDirIterator it(root.path(), {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                        QDirIterator::Subdirectories);
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
        QVERIFY(coreHeaders.exists(QStringLiteral("QString")));
        const auto offends = [&](const Source &source) {
            return !MayShow(source.path) &&
                   std::any_of(source.includes.begin(), source.includes.end(), [&](const QString &include) {
                       return include.startsWith(QLatin1String("<Q")) && !coreHeaders.exists(include.mid(1));
                   });
        };
        QCOMPARE(Offenders(offends), QStringList());
    }

    void nobodyBelowIncludesAForm()
    {
        static const QRegularExpression form(QStringLiteral("\"(.*/forms/|ui_|frm)"));
        const auto offends = [](const Source &source) {
            return !IsForm(source.path) && !source.path.startsWith(QLatin1String("programs/client/")) &&
                   !source.includes.filter(form).isEmpty();
        };
        QCOMPARE(Offenders(offends), QStringList());
    }

    void onlyProgramsIncludePlatform()
    {
        const auto offends = [](const Source &source) {
            return !source.path.startsWith(QLatin1String("platform/")) &&
                   !source.path.startsWith(QLatin1String("programs/")) &&
                   !source.includes.filter(QRegularExpression(QStringLiteral("^\"platform/"))).isEmpty();
        };
        QCOMPARE(Offenders(offends), QStringList());
    }

    void lowerLayersDoNotLookUp()
    {
        static const QList<std::pair<QString, QString>> layers{
            {QStringLiteral("core/"), QStringLiteral("core/")},
            {QStringLiteral("server/wire/"), QStringLiteral("core/|server/wire/")},
            {QStringLiteral("controls/"), QStringLiteral("core/|controls/")},
            {QStringLiteral("platform/"), QStringLiteral("core/|controls/|platform/")},
            // The runs of the server room know the mailbox; the mailbox knows of no server.
            {QStringLiteral("mailbox/"), QStringLiteral("core/|controls/|mailbox/|ui_")},
            {QStringLiteral("desktop/"), QStringLiteral("core/|controls/|mailbox/|desktop/|ui_")},
            // Of the server, composing knows the one door through which faxes go.
            {QStringLiteral("compose/"),
             QStringLiteral("core/|controls/|mailbox/|desktop/|compose/|server/FaxSender|ui_")},
        };
        QStringList found;
        for (const auto &[folder, allowed] : layers) {
            const QRegularExpression foreign(QStringLiteral("^\"(?!%1)[^\"]*/").arg(allowed));
            found += Offenders([&](const Source &source) {
                return source.path.startsWith(folder) && !source.includes.filter(foreign).isEmpty();
            });
        }
        QCOMPARE(found, QStringList());
    }

    void onlyTheEventPumpTurnsTheLoop()
    {
        const auto isFree = [](const Source &source) {
            return source.path == QLatin1String("platform/QtEventPump.cpp") || IsCompanion(source.path);
        };
        QCOMPARE(Containing(QStringLiteral("\\b(processEvents|QEventLoop|waitFor[A-Z]\\w+)\\b"), isFree),
                 QStringList());
    }

    void onlyPlatformOpensBoxesAndDialogs()
    {
        const auto isFree = [](const Source &source) {
            return source.path.startsWith(QLatin1String("platform/")) || IsCompanion(source.path);
        };
        QCOMPARE(
            Containing(QStringLiteral("\\b(QMessageBox|QFileDialog|QFontDialog|QInputDialog)\\b"), isFree),
            QStringList());
        const auto mayExec = [&](const Source &source) {
            return isFree(source) || source.path.startsWith(QLatin1String("programs/client/"));
        };
        QCOMPARE(Containing(QStringLiteral("\\bexec\\s*\\("), mayExec), QStringList());
    }

    void onlyCoreAndLogicHoldSql()
    {
        const auto isFree = [](const Source &source) {
            return !MayShow(source.path) || IsCompanion(source.path);
        };
        const QString sql =
            QStringLiteral("\"\\s*(?i:select|insert into|update|delete from|alter table|create table)\\s");
        QCOMPARE(Containing(sql, isFree), QStringList());
    }

    void aFormIsThreeFilesInOneFolder()
    {
        const QDir root(QStringLiteral(VELMAR_SOURCE_DIR "/src"));
        QDirIterator it(root.path(), {QStringLiteral("frm*")}, QDir::Files, QDirIterator::Subdirectories);
        QStringList incomplete;
        while (it.hasNext()) {
            const QFileInfo file(it.next());
            const QString stem = file.path() + QLatin1Char('/') + file.completeBaseName();
            if (file.dir().dirName() != QLatin1String("forms") ||
                !QFile::exists(stem + QStringLiteral(".ui")) || !QFile::exists(stem + QStringLiteral(".h")) ||
                !QFile::exists(stem + QStringLiteral(".cpp")))
                incomplete.append(root.relativeFilePath(file.filePath()));
        }
        QCOMPARE(incomplete, QStringList());
    }

private:
    struct Source
    {
        QString path; ///< relative to src/
        QStringList includes;
        QString code; ///< without comments
    };

    static bool IsForm(const QString &path) { return path.contains(QLatin1String("/forms/")); }
    static bool IsCompanion(const QString &path)
    {
        return path.startsWith(QLatin1String("programs/")) &&
               !path.startsWith(QLatin1String("programs/client/"));
    }
    static bool MayShow(const QString &path)
    {
        return IsForm(path) || path.startsWith(QLatin1String("controls/")) ||
               path.startsWith(QLatin1String("platform/")) || path.startsWith(QLatin1String("programs/"));
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

    QStringList Containing(const QString &pattern, const std::function<bool(const Source &)> &isFree) const
    {
        const QRegularExpression expression(pattern);
        return Offenders(
            [&](const Source &source) { return !isFree(source) && source.code.contains(expression); });
    }

    QList<Source> sources;
};

QTEST_GUILESS_MAIN(tst_rules)
#include "tst_rules.moc"
