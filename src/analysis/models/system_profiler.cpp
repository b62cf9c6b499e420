#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/models/system_commands.h"

namespace brindlet {

namespace {

// clang-format off
constexpr std::string_view dataTypes[] = {
    "SPParallelATADataType", "SPUniversalAccessDataType", "SPSecureElementDataType", "SPApplicationsDataType",
    "SPAudioDataType", "SPBluetoothDataType", "SPCameraDataType", "SPCardReaderDataType", "SPiBridgeDataType",
    "SPDeveloperToolsDataType", "SPDiagnosticsDataType", "SPDisabledSoftwareDataType", "SPDiscBurningDataType",
    "SPEthernetDataType", "SPExtensionsDataType", "SPFibreChannelDataType", "SPFirewallDataType", "SPFontsDataType",
    "SPFrameworksDataType", "SPDisplaysDataType", "SPHardwareDataType", "SPInstallHistoryDataType",
    "SPInternationalDataType", "SPNetworkLocationDataType", "SPLogsDataType", "SPManagedClientDataType",
    "SPMemoryDataType", "SPNVMeDataType", "SPNetworkDataType", "SPPCIDataType", "SPParallelSCSIDataType",
    "SPPowerDataType", "SPPrefPaneDataType", "SPPrintersSoftwareDataType", "SPPrintersDataType",
    "SPConfigurationProfileDataType", "SPRawCameraDataType", "SPLegacySoftwareDataType", "SPSASDataType",
    "SPSerialATADataType", "SPSPIDataType", "SPSmartCardsDataType", "SPSoftwareDataType", "SPStartupItemDataType",
    "SPStorageDataType", "SPSyncServicesDataType", "SPThunderboltDataType", "SPUSBHostDataType",
    "SPNetworkVolumeDataType", "SPAirPortDataType",
};
constexpr std::string_view slowDataTypes[] = {
    "SPApplicationsDataType", "SPExtensionsDataType", "SPFrameworksDataType", "SPDisplaysDataType", "SPLogsDataType",
    "SPInstallHistoryDataType",
};
// clang-format on
static_assert(std::size(dataTypes) == 50);
constexpr std::string_view detailLevels[] = {"mini", "basic", "full"};
constexpr std::string_view listingOptions[] = {"-listDataTypes", "-usage"};
constexpr std::string_view formatOptions[] = {"-xml", "-json"};
constexpr std::string_view levelOption = "-detailLevel", timeOption = "-timeout";

struct Request {
    Words types;
    bool onlyLists = false, hasTimeout = false, isSupported = true;

    bool isSlow() const {
        if (types.empty()) return !onlyLists;  // all types are reported then
        return std::any_of(types.begin(), types.end(), [](const auto& type) { return isAmong(type, slowDataTypes); });
    }
};

// None where the last word lacks the value that it takes.
std::optional<Request> readRequest(const Words& words) {
    Request request;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        if (word == levelOption || word == timeOption) {
            if (++at == words.size()) return std::nullopt;
            if (word == timeOption) request.hasTimeout = true;
            if (word == levelOption && !isAmong(words[at], detailLevels)) request.isSupported = false;
        } else if (isAmong(word, listingOptions)) {
            request.onlyLists = true;
        } else if (!word.starts_with('-')) {
            request.types.push_back(word);
            if (!isAmong(word, dataTypes)) request.isSupported = false;
        } else if (!isAmong(word, formatOptions)) {
            request.isSupported = false;
        }
    }
    return request;
}

}  // namespace

CommandResult profileSystem(BasherAnalysis& analysis, const ModelInput& input) {
    const auto request = readRequest(input.args);
    if (!request)
        return analysis.addCommandError(
            "System info command incorrectly written",
            fmt::format("system_profiler: option '{}' requires an argument", input.args.back()));
    // Never cut short where the name can't be found: it ends by itself, if late.
    if (!request->hasTimeout) insertOnPrinting(input, {std::string(timeOption), "20"});
    if (request->isSlow()) analysis.addSideEffect({PlainSideEffect::longRunning, std::nullopt});
    if (!request->isSupported)
        analysis.addSideEffect(
            {PlainSideEffect::partialSupport, "'system_profiler' partially supported, full effects unpredictable"});
    return {0, SimString::unknown()};
}

}  // namespace brindlet
