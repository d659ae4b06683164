// Starts `wordlex lsp` for dictionaries, the sources that use their texts, and the settings.
const { workspace } = require("vscode");
const { LanguageClient } = require("vscode-languageclient/node");

let client;

exports.activate = () => {
    const command = workspace.getConfiguration("wordlex").get("path");
    client = new LanguageClient("wordlex", "Wordlex", { command, args: ["lsp"] }, {
        documentSelector: [
            { scheme: "file", language: "wordlex" },
            { scheme: "file", language: "c" },
            { scheme: "file", language: "cpp" },
            { scheme: "file", language: "objective-c" },
            { scheme: "file", language: "objective-cpp" },
            { scheme: "file", pattern: "**/wordlex.toml" },
        ],
    });
    return client.start();
};

exports.deactivate = () => client && client.stop();
