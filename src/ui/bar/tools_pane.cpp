#include "ui/bar/tools_pane.h"

#include <QVariantMap>
#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/log.h"
#include "ui/bar/qt_text.h"
#include "ui/settings_panes.h"

namespace brindlet {

namespace {

constexpr std::chrono::milliseconds followInterval{100};

QVariantMap toVariant(const PackageRow& row) {
    const PackageInfo& package = *row.package;
    const double progress = row.active ? std::clamp(row.active->progress, 0.0, 1.0) : 0;
    const bool hasMessage = row.active && !row.active->messages.empty();
    return {{"name", qt(package.name)},
            {"description", qt(package.description)},
            {"licenseName", qt(package.licenseName)},
            {"licenseURL", qt(package.licenseURL)},
            {"sourceURL", qt(package.sourceURL)},
            {"symbol", qt(row.symbolName())},
            {"isInstalled", row.isInstalled},
            {"isActive", row.active.has_value()},
            {"progress", progress},
            {"percent", qt(percentText(progress))},
            {"message", hasMessage ? shown(row.active->messages.back()) : QString()}};
}

QVariantList toVariant(const std::vector<PackageSection>& sections) {
    QVariantList list;
    for (const PackageSection& section : sections) {
        QVariantList rows;
        for (const PackageRow& row : section.rows) rows.append(toVariant(row));
        list.append(QVariantMap{{"title", qt(section.title)}, {"text", qt(section.text)}, {"rows", rows}});
    }
    return list;
}

}  // namespace

ToolsPane::ToolsPane(ToolsPaneParts parts) : parts_(parts), errands_(parts.loop, parts.workers) {
    sections_ = toVariant(packageSections(parts_.packages));
}

ToolsPane::~ToolsPane() {
    *isThere_ = false;
    stop_.request_stop();
}

void ToolsPane::refresh() {
    errands_.run([this, &packages = parts_.packages, stop = stop_.get_token()] {
        packages.refresh(stop);
        return [this] { look(); };
    });
}

void ToolsPane::setShown(bool isShown) {
    isShown_ = isShown;
    if (!isShown) return;
    problem_.clear();
    look();
    if (!std::exchange(isFollowing_, true)) followLater();
}

void ToolsPane::install(const QString& name) {
    perform(name, true);
}

void ToolsPane::uninstall(const QString& name) {
    perform(name, false);
}

void ToolsPane::perform(const QString& name, bool isInstalling) {
    problem_.clear();
    errands_.run(
        [this, &packages = parts_.packages, name = name.toStdString(), isInstalling, stop = stop_.get_token()] {
            const auto failure = isInstalling ? packages.install(name, nullptr, stop) : packages.uninstall(name, stop);
            return [this, name, isInstalling, failure] {
                const std::string verb = isInstalling ? "install " : "uninstall ";
                const std::string sentence = failure ? "Failed to " + verb + name + ": " + failure->description : "";
                if (failure) logError(sentence);
                problem_ = shown(sentence);
                sections_ = toVariant(packageSections(parts_.packages));
                emit changed();
            };
        });
    emit changed();
}

void ToolsPane::look() {
    QVariantList seen = toVariant(packageSections(parts_.packages));
    if (seen == sections_) return;
    sections_ = std::move(seen);
    emit changed();
}

void ToolsPane::followLater() {
    parts_.loop.postAfter(followInterval, [this, isThere = isThere_] {
        if (!*isThere) return;
        isFollowing_ = isShown_;
        if (!isShown_) return;
        look();
        followLater();
    });
}

}  // namespace brindlet
