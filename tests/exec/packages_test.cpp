#include "exec/packages.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "support/asset_server.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace packages_tests {

using Names = std::set<std::string>;

void makeExecutable(const FilePath& file) {
    std::filesystem::permissions(file.text(), std::filesystem::perms::owner_all);
}

// Keeps what it has installed in a file beside it.
constexpr std::string_view standInBrew = R"(#!/bin/bash
cellar="$(dirname "$0")/cellar"
case "$1 $2" in
    "list "*) echo "==> Formulae" >&2; echo "  ==> more"; cat "$cellar" ;;
    "install qpdf") echo "Fetching dependencies for qpdf: a, b"
                    echo '🍺  /opt/homebrew/Cellar/qpdf/1: 9 files'; echo "wget qpdf xz" >> "$cellar" ;;
    "install gifsicle") sleep 60 ;;
    "uninstall qpdf") sleep 0.25; : > "$cellar" ;;
    *) echo "Error: no $2"; exit 3 ;;
esac
)";

// A machine of its own: its programs, its Homebrew and its temporary folder.
struct Machine {
    explicit Machine(std::string baseURL = "") {
        makeExecutable(disk.write("brew/brew", standInBrew));
        disk.write("brew/cellar", "");
        ::setenv("TMPDIR", disk.makeFolder("tmp").text().c_str(), 1);
        setup.fenwoldPackageBaseURL = std::move(baseURL);
    }
    ~Machine() { ::unsetenv("TMPDIR"); }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    std::string brew() const { return disk.path("brew/brew").text(); }
    Names namesIn(std::string_view folder) const {
        Names names;
        std::error_code missing;
        for (const auto& entry : std::filesystem::directory_iterator(disk.path(folder).text(), missing))
            names.insert(entry.path().filename().string());
        return names;
    }

    // What lies in the folder for tools, but for the lock.
    Names tools() const {
        Names names = namesIn("data/Packages");
        names.erase(".lock");
        return names;
    }

    ScratchFolder disk;
    std::unique_ptr<FileSystem> files = openFileSystem();
    ToolSearchPath searchPath{*files, disk.path("data/Packages"), {disk.path("Binaries")}, {{"SHELL", "/bin/false"}}};
    PackageSetup setup{.files = *files,
                       .searchPath = searchPath,
                       .packagesFolder = disk.path("data/Packages"),
                       .environment = {{"PATH", "/usr/bin:/bin"}},
                       .homebrewPaths = {brew()}};
};

// A real archive of what `script` makes in an empty folder.
std::string archiveOf(const std::string& script) {
    const ScratchFolder scratch;
    scratch.makeFolder("inside");
    const std::string line = "cd " + scratch.path("inside").text() + " && { " + script +
                             "; } && zip -qr --symlinks ../archive.zip . ${more-}";
    EXPECT_EQ(std::system(("bash -c '" + line + "'").c_str()), 0) << script;
    return scratch.read("archive.zip");
}

constexpr std::string_view makeBothTools = "echo new > ffmpeg; echo new > ffprobe; chmod 755 ff*";

std::string descriptionOf(const std::optional<Failure>& failure) {
    return failure ? failure->description : "";
}

TEST(Packages, MissingIsWhatNoFolderHolds) {
    Machine machine;
    const PackageManager packages(machine.setup);
    EXPECT_EQ(packages.firstMissingPackage({}), std::nullopt);
    EXPECT_EQ(packages.firstMissingPackage({"fiotraf", "Nothing"}), std::nullopt);  // not in the table
    // Whatever this machine has of the first: the tool that came with the program is enough.
    EXPECT_EQ(packages.firstMissingPackage({"Fiotraf"}), "Fiotraf");
    makeExecutable(machine.disk.write("Binaries/fiotraf", ""));
    EXPECT_EQ(packages.firstMissingPackage({"Fiotraf"}), std::nullopt);
    EXPECT_TRUE(packages.availableCommands().contains("fiotraf"));
}

TEST(Packages, HomebrewInstallsAndRemoves) {
    Machine machine;
    PackageManager packages(machine.setup);
    packages.refresh();
    EXPECT_EQ(packages.installedPackages(PackageSource::homebrew), Names{});
    std::vector<std::string> messages;
    packages.observe([&](const InstallationProgress& record) {
        if (!record.messages.empty()) messages.push_back(record.messages.back());
    });

    std::vector<std::string> lines;
    const auto takeLine = [&](const CommandProgress& progress) {
        if (const auto* line = std::get_if<OutputLine>(&progress)) lines.push_back(line->text);
    };
    EXPECT_EQ(packages.install("QPDF", takeLine), std::nullopt);
    EXPECT_EQ(packages.installedPackages(PackageSource::homebrew), Names{"QPDF"});
    EXPECT_TRUE(packages.installedCommands().contains("qpdf"));
    EXPECT_EQ(lines,
              (std::vector<std::string>{"🍺 Downloading QPDF dependencies: a", "🍺 Downloading QPDF dependencies: b",
                                        "🍺 Installing QPDF components..."}));
    EXPECT_EQ(messages.back(), lines.back());
    EXPECT_EQ(packages.activeInstallations().size(), 0u);
    // Known to be there, so that nobody is asked.
    const std::string cellar = machine.disk.read("brew/cellar");
    EXPECT_EQ(packages.install("QPDF", nullptr), std::nullopt);
    EXPECT_EQ(machine.disk.read("brew/cellar"), cellar);

    EXPECT_EQ(packages.uninstall("QPDF"), std::nullopt);
    EXPECT_EQ(messages.back(), "Uninstalling QPDF via Homebrew...");
    EXPECT_FALSE(packages.isInstalled("QPDF"));
    EXPECT_FALSE(packages.installedCommands().contains("qpdf"));

    EXPECT_EQ(packages.install("Pandoc", nullptr),
              (Failure{"Failure while running " + machine.brew() + " install pandoc", 3}));
    EXPECT_EQ(messages.back(), "Uninstalling QPDF via Homebrew...");  // the tracker keeps other lines to itself
    EXPECT_EQ(packages.uninstall("Pandoc"), Failure{"Homebrew uninstall failed with status 3"});
    EXPECT_EQ(packages.install("pandoc", nullptr), Failure{"Package not found"});
    EXPECT_EQ(packages.uninstall(""), Failure{"Package not found"});

    std::stop_source stop;
    std::thread stopper([&] { stop.request_stop(); });
    EXPECT_EQ(packages.install("Gifsicle", nullptr, stop.get_token()), Failure{"Cancelled."});
    stopper.join();
    EXPECT_FALSE(packages.isInstalled("Gifsicle"));
}

TEST(Packages, WithoutHomebrew) {
    Machine machine;
    machine.setup.homebrewPaths = {"/no/such/brew"};
    machine.setup.environment = {{"PATH", "/none"}};
    PackageManager packages(machine.setup);
    packages.refresh();
    EXPECT_EQ(packages.brewPath(), std::nullopt);
    EXPECT_EQ(packages.install("QPDF", nullptr), Failure{"Homebrew not installed"});
    EXPECT_EQ(packages.uninstall("QPDF"), Failure{"Homebrew not installed"});
    machine.setup.homebrewPaths = {machine.disk.write("no interpreter", "#!/no/such").text()};
    makeExecutable(FilePath(machine.setup.homebrewPaths.front()));
    testing::internal::CaptureStderr();
    PackageManager(machine.setup).refresh();
    EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("Error getting Homebrew packages: "));
    machine.setup.homebrewPaths.clear();
    machine.setup.environment = {{"PATH", machine.disk.path("brew").text()}};
    EXPECT_EQ(PackageManager(machine.setup).brewPath(), machine.brew());
}

// Two packages that share a tool, and one that came with the program.
TEST(Packages, ASharedToolStaysWithTheOtherPackage) {
    constexpr std::string_view first[] = {"own", "shared"};
    constexpr std::string_view second[] = {"shared"};
    PackageInfo rows[] = {availablePackages()[0], availablePackages()[0]};
    rows[0].name = "First";
    rows[0].binaries = first;
    rows[1].name = "Second";
    rows[1].source = PackageSource::bundled;
    rows[1].binaries = second;
    Machine machine;
    makeExecutable(machine.disk.write("Binaries/shared", ""));
    makeExecutable(machine.disk.write("data/Packages/own", ""));
    makeExecutable(machine.disk.write("data/Packages/shared", ""));
    machine.setup.availablePackages = rows;
    PackageManager packages(machine.setup);
    packages.refresh();
    EXPECT_TRUE(packages.isInstalled("First") && packages.isInstalled("Second"));
    EXPECT_EQ(packages.uninstall("First"), std::nullopt);
    EXPECT_EQ(packages.installedCommands(), Names{"shared"});
    EXPECT_EQ(packages.uninstall("Second"), Failure{"Bundled tools cannot be uninstalled"});
    std::filesystem::remove(machine.disk.path("Binaries/shared").text());
    packages.refresh();
    EXPECT_EQ(packages.install("Second", nullptr), Failure{"Bundled tools cannot be installed"});
}

TEST(Packages, ArchivesAreFetchedUnpackedAndRemoved) {
    AssetServer server({{"/p/ffmpeg.zip", {.body = archiveOf(std::string(makeBothTools) + "; echo more > README")}}});
    Machine machine(server.url() + "/p");
    machine.setup.homebrewPaths.clear();
    machine.disk.write("data/Packages/ffmpeg", "half of one that somebody put there");
    PackageManager packages(machine.setup);
    packages.refresh();
    EXPECT_FALSE(packages.isInstalled("FFmpeg"));

    std::vector<double> fractions, recorded;
    std::string firstMessage;
    packages.observe([&](const InstallationProgress& record) {
        if (firstMessage.empty()) firstMessage = record.messages.front();
        recorded.push_back(record.progress);
        EXPECT_EQ(packages.packageNamed(record.packageName)->name, "FFmpeg");
    });
    const auto takeFraction = [&](const CommandProgress& progress) {
        if (const auto* norm = std::get_if<ProgressNorm>(&progress)) fractions.push_back(norm->value);
    };
    EXPECT_EQ(packages.install("FFmpeg", takeFraction), std::nullopt);
    EXPECT_EQ(fractions.back(), 1.0);
    EXPECT_EQ(recorded.back(), 0.8);
    EXPECT_EQ(firstMessage, "Downloading FFmpeg...");
    EXPECT_TRUE(packages.isInstalled("FFmpeg"));
    EXPECT_EQ(machine.disk.read("data/Packages/ffmpeg"), "new\n");
    EXPECT_EQ(machine.tools(), (Names{".FFmpeg", "ffmpeg", "ffprobe"}));
    EXPECT_EQ(machine.namesIn("data/Packages/.FFmpeg"), (Names{"ffmpeg", "ffprobe"}));
    EXPECT_EQ(machine.namesIn("tmp"), Names{});

    recorded.clear();
    EXPECT_EQ(packages.uninstall("FFmpeg"), std::nullopt);
    EXPECT_EQ(recorded.front(), 0.0);
    EXPECT_EQ(recorded.back(), 1.0);
    EXPECT_FALSE(packages.isInstalled("FFmpeg"));
    EXPECT_EQ(machine.tools(), Names{});
}

// The steps at which an installation or removal can have been cut off, each left as it was then.
TEST(Packages, WhatWasCutOffIsWholeOrNotThere) {
    AssetServer server({{"/ffmpeg.zip", {.body = archiveOf(std::string(makeBothTools))}}});
    struct Case {
        std::string_view what, before;
        bool isThere;
    };
    const Case cases[] = {
        {"linked before the tools are there", "ln -s .FFmpeg/ffmpeg .", false},
        {"the tools are there",
         "mkdir .FFmpeg && cp /bin/true .FFmpeg/ffmpeg && cp /bin/true .FFmpeg/ffprobe && "
         "ln -s .FFmpeg/ffmpeg .FFmpeg/ffprobe .",
         true},
        {"taken away before the links", "ln -s .FFmpeg/ffmpeg .FFmpeg/ffprobe . && mkdir .removed-FFmpeg", false},
        {"taken away with one link", "ln -s .FFmpeg/ffprobe . && mkdir -p .removed-FFmpeg/ffmpeg", false},
        {"put there by hand", "cp /bin/true ffmpeg && cp /bin/true ffprobe", true},
    };
    for (const auto& [what, before, isThere] : cases) {
        SCOPED_TRACE(what);
        for (const bool installs : {true, false}) {
            Machine machine(server.url());
            const std::string folder = machine.disk.makeFolder("data/Packages").text();
            ASSERT_EQ(std::system(("cd " + folder + " && " + std::string(before)).c_str()), 0);
            PackageManager asks(machine.setup);
            asks.refresh();
            EXPECT_EQ(asks.isInstalled("FFmpeg"), isThere);
            // One that hasn't looked, so that it installs anew.
            PackageManager packages(machine.setup);
            EXPECT_EQ(installs ? packages.install("FFmpeg", nullptr) : packages.uninstall("FFmpeg"), std::nullopt);
            EXPECT_EQ(packages.isInstalled("FFmpeg"), installs);
            EXPECT_EQ(machine.tools(), installs ? (Names{".FFmpeg", "ffmpeg", "ffprobe"}) : Names{});
            EXPECT_EQ(machine.disk.read("data/Packages/ffprobe"), installs ? "new\n" : "");
        }
    }
}

TEST(Packages, NothingHalfInstalledIsTakenForInstalled) {
    const std::string good = archiveOf(std::string(makeBothTools));
    const std::string unzip = "Failure while running /usr/bin/unzip -o ";
    struct Case {
        std::string_view what;
        Asset asset;
        std::string description;  // its beginning
    };
    const Case cases[] = {
        {"not there", {.status = 404, .body = good}, "Download failed: server status code: 404"},
        {"connection lost", {.body = good.substr(0, 200), .announcedLength = good.size()}, "transfer closed with"},
        {"truncated", {.body = good.substr(0, good.size() / 2)}, unzip},
        {"damaged", {.body = std::string(good).replace(good.find("new\n"), 3, "old")}, unzip},
        {"climbs out", {.body = archiveOf("more=../evil; echo bad > ../evil; " + std::string(makeBothTools))}, unzip},
        {"one is a link",
         {.body = archiveOf("echo > ffmpeg; chmod 755 ffmpeg; ln -s /bin/sh ffprobe")},
         "The archive 'ffmpeg.zip' holds no tool 'ffprobe'"},
        {"one can't be run",
         {.body = archiveOf("echo > ffmpeg; chmod 755 ffmpeg; echo > ffprobe")},
         "The archive 'ffmpeg.zip' holds no tool 'ffprobe'"},
        {"too many files",
         {.body = archiveOf("mkdir m; touch m/{1..60}; " + std::string(makeBothTools))},
         "The archive 'ffmpeg.zip' unpacks to more than it may: 9 MiB in 50 files"},
        {"too large",
         {.body = archiveOf("head -c 10000000 /dev/zero > ffmpeg; cp ffmpeg ffprobe; chmod 755 ff*")},
         "The archive 'ffmpeg.zip' unpacks to more than it may: 9 MiB in 50 files"},
    };
    for (const auto& [what, asset, description] : cases) {
        SCOPED_TRACE(what);
        AssetServer server({{"/ffmpeg.zip", asset}});
        Machine machine(server.url());
        machine.setup.unpackLimits = {.bytes = 10'000'000, .entries = 50};
        PackageManager packages(machine.setup);
        const std::string found = descriptionOf(packages.install("FFmpeg", nullptr));
        EXPECT_EQ(found.substr(0, description.size()), description);
        EXPECT_FALSE(packages.isInstalled("FFmpeg"));
        EXPECT_EQ(machine.tools(), Names{});
        EXPECT_EQ(machine.namesIn("data"), machine.namesIn("data").empty() ? Names{} : Names{"Packages"});
        EXPECT_EQ(packages.activeInstallations().size(), 0u);
    }
}

// A limit on the size of files stands for a full disk.
TEST(Packages, AFullDisk) {
    const std::string large = archiveOf("head -c 100000 /dev/urandom > ffmpeg; cp ffmpeg ffprobe; chmod 755 ff*");
    const std::string swelling = archiveOf("head -c 1000000 /dev/zero > ffmpeg; cp ffmpeg ffprobe; chmod 755 ff*");
    AssetServer server({{"/large/ffmpeg.zip", {.body = large}}, {"/swelling/ffmpeg.zip", {.body = swelling}}});
    const auto before = ::signal(SIGXFSZ, SIG_IGN);
    for (const std::string folder : {"/large", "/swelling"}) {
        SCOPED_TRACE(folder);
        Machine machine(server.url() + folder);
        PackageManager packages(machine.setup);
        rlimit limit{};
        ::getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit small{.rlim_cur = 50'000, .rlim_max = limit.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
        const std::string description = descriptionOf(packages.install("FFmpeg", nullptr));
        ::setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_TRUE(description.starts_with(folder == "/large" ? "Can't write the downloaded file: File too large"
                                                               : "Failure while running /usr/bin/unzip"))
            << description;
        EXPECT_EQ(machine.tools(), Names{});
    }
    ::signal(SIGXFSZ, before);
}

TEST(Packages, ACancelledInstallationLeavesNothing) {
    const std::string archive = archiveOf("head -c 200000 /dev/urandom > ffmpeg; cp ffmpeg ffprobe; chmod 755 ff*");
    AssetServer server(
        {{"/half/ffmpeg.zip",
          {.body = archive.substr(0, archive.size() / 2), .announcedLength = archive.size(), .hangs = true}},
         {"/whole/ffmpeg.zip", {.body = archive}}});
    struct Case {
        std::string folder, description;
        double stopsAt;
    };
    for (const auto& [folder, description, stopsAt] :
         {Case{"/half", "Download cancelled.", 0.1}, Case{"/whole", "Cancelled.", 1.0}}) {
        Machine machine(server.url() + folder);
        PackageManager packages(machine.setup);
        std::stop_source stop;
        const auto stopIfFar = [&, limit = stopsAt](const CommandProgress& progress) {
            const auto* norm = std::get_if<ProgressNorm>(&progress);
            if (norm != nullptr && norm->value >= limit) stop.request_stop();
        };
        const std::string found = descriptionOf(packages.install("FFmpeg", stopIfFar, stop.get_token()));
        // The last piece may be the whole.
        EXPECT_TRUE(found == description || (folder == "/whole" && found == "Download cancelled.")) << found;
        EXPECT_EQ(machine.tools(), Names{});
        EXPECT_EQ(machine.namesIn("tmp"), Names{});
    }
}

}  // namespace packages_tests
}  // namespace brindlet
