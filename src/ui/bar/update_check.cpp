#include "ui/bar/update_check.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <utility>

namespace brindlet {

namespace {

// The value of a line as "  Candidate: 0.2.0"; empty where there is none.
QString policyValue(const QString& policy, const QString& name) {
    const QRegularExpression line(QStringLiteral("^\\s*%1: (\\S+)").arg(name), QRegularExpression::MultilineOption);
    const QString value = line.match(policy).captured(1);
    return value == QStringLiteral("(none)") ? QString() : value;
}

}  // namespace

QString updateSentence(const QString& policy, const QString& version) {
    const QString installed = policyValue(policy, QStringLiteral("Installed"));
    const QString candidate = policyValue(policy, QStringLiteral("Candidate"));
    if (installed.isEmpty())
        return QStringLiteral("Brindlet %1 wasn't installed by the system's package manager, which brings the updates.")
            .arg(version);
    if (candidate.isEmpty() || candidate == installed)
        return QStringLiteral("Brindlet %1 is the newest version that your package sources offer.").arg(installed);
    return QStringLiteral("Brindlet %1 is available, you have %2. It comes with your system's next update.")
        .arg(candidate, installed);
}

void checkForUpdates(const QString& version, std::function<void(const QString&)> told) {
    auto* process = new QProcess;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    process->setProcessEnvironment(environment);
    const auto end = [process, version, told = std::move(told)] {
        told(updateSentence(QString::fromUtf8(process->readAllStandardOutput()), version));
        process->deleteLater();
    };
    QObject::connect(process, &QProcess::finished, process, end);
    QObject::connect(process, &QProcess::errorOccurred, process, [end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) end();
    });
    process->start(QStringLiteral("apt-cache"), {QStringLiteral("policy"), QStringLiteral("brindlet")});
}

}  // namespace brindlet
