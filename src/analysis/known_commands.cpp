#include "analysis/known_commands.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

namespace brindlet {

namespace {

// All sorted, which is asserted.
// clang-format off
constexpr std::string_view complexCommands[] = {
    "ammonite", "ansible", "ant", "argo", "argo-cd", "aws", "az", "babel", "bazel", "bpython", "buck", "bun", "bzr",
    "c", "cabal", "cargo", "cc", "chef", "circleci", "clang", "clang++", "cmake", "composer", "dart", "dartfmt",
    "deno", "dlv", "docker", "docker-compose", "doctl", "elasticsearch", "elixir", "erl", "erlang", "flutter", "flux",
    "ftp", "g++", "gcc", "gcloud", "gem", "ghc", "ghci", "git", "gitlab-runner", "go", "godoc", "gofmt", "gradle",
    "haskell", "helm", "hg", "iex", "ipython", "irb", "java", "javac", "jenkins", "jshell", "jx", "k3d", "k9s",
    "kafka", "kind", "kotlin", "kotlin-native", "kotlinc", "kubectl", "launchctl", "launchd", "lldb", "make", "maven",
    "minikube", "mix", "mongo", "mongodb", "mosh", "mysql", "ninja", "node", "npm", "npx", "ocaml", "ocamlopt",
    "packer", "pants", "perl", "perl6", "php", "pip", "pip3", "playground", "pnpm", "podman", "postgresql", "puppet",
    "pypy", "python", "python2", "python3", "qemu", "rabbitmq", "raku", "rebar", "redis", "rsync", "ruby", "rustc",
    "salt", "sbt", "scala", "scalac", "scp", "service", "sftp", "skaffold", "spinnaker", "sqlite", "sqllite3", "ssh",
    "stack", "svn", "swift", "swiftc", "systemctl", "terraform", "tilt", "travis", "ts-node", "tsc", "utop",
    "vagrant", "virtualbox", "vmware", "webpack", "yarn",
};
// bash 5.2, `compgen -b` and `compgen -k`, without those that do nothing to the rest.
constexpr std::string_view shellsOwnCommands[] = {
    "!", ".", "alias", "builtin", "caller", "command", "compopt", "continue", "coproc", "declare", "disown", "enable",
    "eval", "exec", "exit", "export", "fc", "getopts", "hash", "let", "local", "logout", "mapfile", "popd", "pushd",
    "readarray", "readonly", "return", "set", "shift", "shopt", "source", "suspend", "time", "trap", "typeset",
    "umask", "unalias", "unset", "wait", "{",
};
constexpr std::string_view commandsToCome[] = {
    "afinfo", "afplay", "altool", "brew", "codesign", "dig", "ditto", "env", "less", "more", "notarytool",
    "productsign", "say", "screencapture", "security", "spctl", "stapler",
};
// clang-format on

static_assert(std::is_sorted(std::begin(complexCommands), std::end(complexCommands)));
static_assert(std::is_sorted(std::begin(commandsToCome), std::end(commandsToCome)));
static_assert(std::is_sorted(std::begin(shellsOwnCommands), std::end(shellsOwnCommands)));

constexpr std::string_view invitation = "If you'd like it to be supported, please let us know.";

}  // namespace

bool isComplexCommand(std::string_view name) {
    return std::binary_search(std::begin(complexCommands), std::end(complexCommands), name);
}

bool isCommandToCome(std::string_view name) {
    return std::binary_search(std::begin(commandsToCome), std::end(commandsToCome), name);
}

bool isPartOfTheShell(std::string_view name) {
    return std::binary_search(std::begin(shellsOwnCommands), std::end(shellsOwnCommands), name);
}

SideEffect sideEffectOfUnmodelled(std::string_view name) {
    if (isComplexCommand(name))
        return {ComplexCommand{fmt::format("'{}' command is complex, outcome unpredictable", name)}, std::nullopt};
    if (isCommandToCome(name))
        return {PlainSideEffect::unknownCommand, fmt::format("Prediction support for '{}' is coming soon.", name)};
    return {PlainSideEffect::unknownCommand,
            fmt::format("Brindlet doesn’t know the command '{}' — proceed with caution.\n{}", name, invitation)};
}

}  // namespace brindlet
