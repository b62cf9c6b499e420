#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/models/network_commands.h"
#include "analysis/models/tool_options.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using FlagsAndOptions = ArgExtractor::FlagsAndOptions;

// --- what the model reads ---

// Options that take a value. Those that write files stand first, so that a name cut short counts as theirs.
// clang-format off
constexpr ToolOption curlValueOptions[] = {
    {'o', "output", Takes::value}, {'c', "cookie-jar", Takes::value}, {'D', "dump-header", Takes::value},
    {'K', "config", Takes::value}, {0, "trace", Takes::value}, {0, "trace-ascii", Takes::value},
    {0, "etag-save", Takes::value}, {0, "alt-svc", Takes::value}, {'T', "upload-file", Takes::value},
    {0, "output-dir", Takes::value}, {'w', "write-out", Takes::value}, {0, "unix-socket", Takes::value},
    {0, "abstract-unix-socket", Takes::value},
    {'A', "user-agent", Takes::value}, {'u', "user", Takes::value}, {'b', "cookie", Takes::value},
    {0, "ciphers", Takes::value}, {0, "connect-timeout", Takes::value}, {0, "connect-to", Takes::value},
    {'C', "continue-at", Takes::value}, {'d', "data", Takes::value}, {0, "data-raw", Takes::value},
    {0, "data-urlencode", Takes::value}, {0, "doh-url", Takes::value}, {0, "egd-file", Takes::value},
    {'E', "cert", Takes::value}, {0, "cert-type", Takes::value}, {0, "key", Takes::value},
    {0, "key-type", Takes::value}, {0, "pass", Takes::value}, {0, "engine", Takes::value},
    {0, "ftp-account", Takes::value}, {0, "ftp-alternative-to-user", Takes::value}, {0, "ftp-method", Takes::value},
    {'P', "ftp-port", Takes::value}, {'F', "form", Takes::value}, {'H', "header", Takes::value},
    {0, "hostpubmd5", Takes::value}, {0, "hostpubsha256", Takes::value}, {0, "interface", Takes::value},
    {0, "limit-rate", Takes::value}, {0, "local-port", Takes::value}, {0, "login-options", Takes::value},
    {0, "mail-from", Takes::value}, {0, "mail-rcpt", Takes::value}, {0, "mail-auth", Takes::value},
    {0, "max-filesize", Takes::value}, {0, "max-redirs", Takes::value}, {'m', "max-time", Takes::value},
    {0, "netrc-file", Takes::value}, {0, "proto", Takes::value}, {0, "proto-default", Takes::value},
    {0, "proto-redir", Takes::value}, {'x', "proxy", Takes::value}, {0, "proxy-header", Takes::value},
    {0, "proxy-service-name", Takes::value}, {'U', "proxy-user", Takes::value}, {0, "pubkey", Takes::value},
    {'Q', "quote", Takes::value}, {0, "random-file", Takes::value}, {'r', "range", Takes::value},
    {0, "rate", Takes::value}, {'e', "referer", Takes::value}, {'X', "request", Takes::value},
    {0, "resolve", Takes::value}, {0, "retry", Takes::value}, {0, "retry-delay", Takes::value},
    {0, "retry-max-time", Takes::value}, {0, "sasl-authzid", Takes::value}, {0, "service-name", Takes::value},
    {0, "socks4", Takes::value}, {0, "socks4a", Takes::value}, {0, "socks5", Takes::value},
    {0, "socks5-gssapi-service", Takes::value}, {0, "socks5-hostname", Takes::value},
    {'t', "telnet-option", Takes::value}, {0, "url", Takes::value}, {'y', "speed-time", Takes::value},
    {'Y', "speed-limit", Takes::value}, {'z', "time-cond", Takes::value}, {0, "aws-sigv4", Takes::value},
    {0, "cacert", Takes::value}, {0, "capath", Takes::value}, {0, "crlfile", Takes::value},
    {0, "delegation", Takes::value}, {0, "dns-interface", Takes::value}, {0, "dns-ipv4-addr", Takes::value},
    {0, "dns-ipv6-addr", Takes::value}, {0, "dns-servers", Takes::value}, {0, "etag-compare", Takes::value},
    {0, "expect100-timeout", Takes::value}, {0, "happy-eyeballs-timeout-ms", Takes::value},
    {0, "json", Takes::value}, {0, "keepalive-time", Takes::value}, {0, "krb", Takes::value},
    {0, "oauth2-bearer", Takes::value}, {0, "pinnedpubkey", Takes::value}, {0, "proxy-cacert", Takes::value},
    {0, "proxy-capath", Takes::value}, {0, "proxy-cert", Takes::value}, {0, "proxy-cert-type", Takes::value},
    {0, "proxy-crlfile", Takes::value}, {0, "proxy-key", Takes::value}, {0, "proxy-key-type", Takes::value},
    {0, "proxy-pass", Takes::value}, {0, "proxy-pinnedpubkey", Takes::value},
    {0, "proxy-tls13-ciphers", Takes::value}, {0, "proxy-tlsauthtype", Takes::value},
    {0, "proxy-tlspassword", Takes::value}, {0, "proxy-tlsuser", Takes::value}, {0, "proxy1.0", Takes::value},
    {0, "tls-max", Takes::value}, {0, "tls13-ciphers", Takes::value}, {0, "tlsauthtype", Takes::value},
    {0, "tlspassword", Takes::value}, {0, "tlsuser", Takes::value},
};

// curl 7.88.1, --help all: what the model takes for flags or for operands and the tool does not, and flags whose name is
// the begin of another's.
constexpr ToolOption otherOptions[] = {
    {0, "hsts", Takes::value}, {0, "stderr", Takes::value}, {0, "libcurl", Takes::value},
    {0, "ssl-sessions", Takes::value}, {'O', "remote-name"}, {0, "remote-name-all"}, {'J', "remote-header-name"},
    {0, "create-dirs"}, {0, "head"}, {0, "netrc"}, {0, "crlf"}, {0, "ssl"},
    {0, "socks5-gssapi"}, {0, "data-binary", Takes::value}, {0, "data-ascii", Takes::value},
    {0, "form-string", Takes::value}, {0, "noproxy", Takes::value}, {0, "preproxy", Takes::value},
    {0, "request-target", Takes::value}, {0, "url-query", Takes::value}, {0, "create-file-mode", Takes::value},
};
// clang-format on

constexpr std::size_t spellings(std::span<const ToolOption> rows) {
    std::size_t count = rows.size();
    for (const auto& row : rows) count += row.letter != 0 ? 1 : 0;
    return count;
}
static_assert(spellings(curlValueOptions) == 142);

ArgExtractor::OptionArities extractedOptions() {
    ArgExtractor::OptionArities options;
    for (const auto& row : curlValueOptions) {
        if (row.letter != 0) options.emplace_back(std::string_view(&row.letter, 1), 1);
        options.emplace_back(row.name, 1);
    }
    return options;
}

// The values of the options given, by the order of the names, as far as there are any.
Words valuesOf(const FlagsAndOptions& taken, std::initializer_list<std::string_view> names) {
    Words values;
    for (const auto name : names)
        if (auto value = taken.value(name)) values.push_back(*value);
    return values;
}

bool isMalformed(std::string_view url, std::string_view path) {
    const auto isControlOrBlank = [](unsigned char c) { return c <= ' ' || c == 0x7f; };
    return std::any_of(url.begin(), url.end(), isControlOrBlank) ||
           path.find_first_of("{}[]") != std::string_view::npos;
}

// What stands behind the last slash of the path; none without a path or a name in it.
std::optional<std::string> fileNameIn(std::string_view url) {
    std::string_view rest = url.substr(0, url.find_first_of("?#"));
    if (const auto scheme = rest.find("://"); scheme != std::string_view::npos) rest.remove_prefix(scheme + 3);
    const auto slash = rest.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    const std::string_view path = rest.substr(slash);
    const std::string_view name = path.substr(path.rfind('/') + 1);
    if (isMalformed(url, path) || name.empty() || name == "." || name == "..") return std::nullopt;
    return std::string(name);
}

std::optional<CommandResult> checkUploads(BasherAnalysis& analysis, const FlagsAndOptions& taken) {
    return firstFailure(valuesOf(taken, {"T", "upload-file"}),
                        [&](const std::string& value) -> std::optional<CommandResult> {
                            const FilePath url = analysis.resolveURL(value);
                            if (analysis.fileExists(url)) return std::nullopt;
                            return analysis.addCommandError(fmt::format("Upload: {} doesn't exist", url.name()),
                                                            fmt::format("curl: (26) Couldn't open file \"{}\"", value));
                        });
}

std::optional<std::string> requestDescription(const Words& urls) {
    if (urls.empty()) return std::nullopt;
    if (urls.size() == 1) return urls.front();
    return fmt::format("Requests {} and {} more", urls.front(), urls.size() - 1);
}

// --- what the tool does beyond it ---

const std::vector<ToolOption>& allOptions() {
    static const std::vector<ToolOption> all = [] {
        std::vector<ToolOption> rows(std::begin(curlValueOptions), std::end(curlValueOptions));
        rows.insert(rows.end(), std::begin(otherOptions), std::end(otherOptions));
        return rows;
    }();
    return all;
}

constexpr std::string_view curlWritingOptions[] = {"output",      "cookie-jar", "dump-header", "trace",
                                                   "trace-ascii", "etag-save",  "alt-svc",     "hsts",
                                                   "stderr",      "libcurl",    "ssl-sessions"};
constexpr std::string_view socketOptions[] = {"unix-socket", "abstract-unix-socket"};

class UnshownEffects {
  public:
    UnshownEffects(BasherAnalysis& analysis, const Words& words, std::set<FilePath> shown)
        : analysis_(analysis),
          reading_(readAsTool(words, allOptions())),
          shown_(std::move(shown)),
          urls_(reading_.operands) {
        for (const auto& option : reading_.options)
            if (option.name == "url") urls_.push_back(option.value.value_or(""));
    }

    void say() {
        for (const auto& option : reading_.options) sayOf(option);
        if (namesFilesItself())
            sayChanges("'curl' names files after what it downloads, and may write others than shown here");
        if (!reading_.has('T')) return;
        for (const auto& url : urls_)
            if (lowercased(url).starts_with("file:")) sayChanges(writes(url));
    }

  private:
    void sayOf(const ToolReading::Option& option) {
        const std::string value = option.value.value_or("");
        if (isAmong(option.name, curlWritingOptions)) sayOfFile(option.name, value);
        if (option.name == "config") sayPartial("takes further options from", value);
        if (isAmong(option.name, socketOptions)) sayPartial("talks to another program through", value);
        if (option.name == "write-out" && (value.starts_with('@') || contains(value, "%output{")))
            sayChanges("'curl -w' may write to other files, which isn't shown here");
        if (option.name.starts_with("expand-")) sayPartial("works out the value of", "--" + option.name);
    }

    void sayOfFile(std::string_view option, const std::string& value) {
        if (value.empty() || value == "-") return;
        const bool isOutput = option == "output";
        const FilePath url = analysis_.resolveURL(isOutput ? folderPrefix() + value : value);
        if (!shown_.contains(url) || (isOutput && namesPartOfUrl(value))) sayChanges(writes(value));
        if (isOutput && reading_.hasLong("create-dirs") && !analysis_.fileExists(url.parent()))
            sayChanges(fmt::format("'curl' makes the missing folders of {}, which isn't shown here",
                                   quotedForSentence(value)));
    }

    // "#1" stands for what a pattern in the URL matched.
    static bool namesPartOfUrl(std::string_view value) {
        const auto at = value.find('#');
        return at != std::string_view::npos && at + 1 < value.size() && value[at + 1] >= '0' && value[at + 1] <= '9';
    }

    std::string folderPrefix() const {
        std::string prefix;
        for (const auto& option : reading_.options)
            if (option.name == "output-dir" && option.value) prefix = *option.value + "/";
        return prefix;
    }

    bool namesFilesItself() const {
        const auto isNamed = [](const auto& option) { return option.name == "remote-name"; };
        const auto named = std::count_if(reading_.options.begin(), reading_.options.end(), isNamed);
        if (reading_.hasLong("remote-name-all") || (reading_.has('J') && named > 0)) return true;
        return named > 0 && ((urls_.size() > 1 && (named > 1 || reading_.has('o'))) || !folderPrefix().empty());
    }

    static std::string writes(std::string_view path) {
        return fmt::format("'curl' may also write {}, which isn't shown here", quotedForSentence(path));
    }
    void sayChanges(std::string sentence) {
        analysis_.addSideEffect({PlainSideEffect::unknownFileChanges, std::move(sentence)});
    }
    void sayPartial(std::string_view what, std::string_view value) {
        analysis_.addSideEffect({PlainSideEffect::partialSupport,
                                 fmt::format("'curl' {} {}, which isn't shown here", what, quotedForSentence(value))});
    }

    BasherAnalysis& analysis_;
    const ToolReading reading_;
    const std::set<FilePath> shown_;
    Words urls_;
};

}  // namespace

CommandResult transferUrls(BasherAnalysis& analysis, const ModelInput& input) {
    static const ArgExtractor::OptionArities options = extractedOptions();
    ArgExtractor args = wordsOf(input);
    const FlagsAndOptions taken = args.extractFlagsAndOptions(options);
    if (auto failure = checkUploads(analysis, taken)) return *failure;

    Words urls = args.remainingArgs();
    if (auto url = taken.value("url")) urls.push_back(*url);
    Words outputs = valuesOf(taken, {"o", "output", "D", "dump-header"});
    if (taken.hasFlag("O") || taken.hasFlag("remote-name")) {
        if (urls.empty()) return analysis.addCommandError("URL not specified", "curl: (2) no URL specified");
        auto name = fileNameIn(urls.front());
        if (!name)
            return analysis.addCommandError("URL has no file name at the end",
                                            "curl: (23) Failed writing received data to disk/application");
        outputs.push_back(std::move(*name));
    }
    std::set<FilePath> shown;
    for (const auto& output : outputs) {
        if (output == "-") continue;
        const FilePath url = analysis.resolveURL(output);
        analysis.addFileChange(creation(url), false);
        shown.insert(url);
    }
    analysis.addSideEffect({PlainSideEffect::networkAccess, requestDescription(urls)});
    UnshownEffects(analysis, input.args, std::move(shown)).say();
    return {0, SimString::unknown()};
}

}  // namespace brindlet
