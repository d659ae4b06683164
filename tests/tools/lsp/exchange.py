#!/usr/bin/env python3
"""Drives `wordlex lsp` as an editor does and checks its responses.

usage: exchange.py WORDLEX [METAMODEL]

With METAMODEL, the protocol's metaModel.json, every message of both sides is checked against it.
"""
import json
import os
import subprocess
import sys
import tempfile
import time


class Model:
    """The protocol's types. check() raises ValueError for a value that is not of its type."""

    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            model = json.load(file)
        self.requests = {r["method"]: r for r in model["requests"]}
        self.notifications = {n["method"]: n for n in model["notifications"]}
        self.structures = {s["name"]: s for s in model["structures"]}
        self.enumerations = {e["name"]: e for e in model["enumerations"]}
        self.aliases = {a["name"]: a for a in model["typeAliases"]}

    def check(self, value, kind, where):
        getattr(self, "check_" + kind["kind"])(value, kind, where)

    def fail(self, where, value, wanted):
        raise ValueError(f"{where}: {json.dumps(value)[:200]} is no {wanted}")

    def check_base(self, value, kind, where):
        name = kind["name"]
        wanted = {
            "integer": int, "uinteger": int, "decimal": (int, float), "string": str,
            "boolean": bool, "null": type(None), "URI": str, "DocumentUri": str, "RegExp": str,
        }[name]
        ok = isinstance(value, wanted) and (wanted is bool or not isinstance(value, bool))
        if not ok or (name == "uinteger" and value < 0):
            self.fail(where, value, name)

    def check_reference(self, value, kind, where):
        name = kind["name"]
        if name in ("LSPAny", "LSPObject", "LSPArray"):
            return
        if name in self.structures:
            self.check_properties(value, self.properties(name), where + ":" + name)
        elif name in self.enumerations:
            entry = self.enumerations[name]
            self.check(value, entry["type"], where)
            values = [v["value"] for v in entry["values"]]
            if value not in values and not entry.get("supportsCustomValues"):
                self.fail(where, value, name)
        else:
            self.check(value, self.aliases[name]["type"], where)

    def properties(self, name):
        structure = self.structures[name]
        found = {}
        for base in structure.get("extends", []) + structure.get("mixins", []):
            found.update(self.properties(base["name"]))
        found.update({p["name"]: p for p in structure["properties"]})
        return found

    def check_properties(self, value, properties, where):
        if not isinstance(value, dict):
            self.fail(where, value, "object")
        for name in value:
            if name not in properties:
                self.fail(where, value, f"object without {name}")
        for name, info in properties.items():
            if name in value:
                self.check(value[name], info["type"], where + "." + name)
            elif not info.get("optional"):
                self.fail(where, value, f"object, for it lacks {name}")

    def check_literal(self, value, kind, where):
        self.check_properties(
            value, {p["name"]: p for p in kind["value"]["properties"]}, where)

    def check_array(self, value, kind, where):
        if not isinstance(value, list):
            self.fail(where, value, "array")
        for i, item in enumerate(value):
            self.check(item, kind["element"], f"{where}[{i}]")

    def check_tuple(self, value, kind, where):
        if not isinstance(value, list) or len(value) != len(kind["items"]):
            self.fail(where, value, "tuple")
        for item, element in zip(value, kind["items"]):
            self.check(item, element, where)

    def check_map(self, value, kind, where):
        if not isinstance(value, dict):
            self.fail(where, value, "map")
        for name, item in value.items():
            self.check(name, kind["key"], where)
            self.check(item, kind["value"], f"{where}[{name}]")

    def check_or(self, value, kind, where):
        faults = []
        for item in kind["items"]:
            try:
                return self.check(value, item, where)
            except ValueError as fault:
                faults.append(str(fault))
        raise ValueError("; ".join(faults))

    def check_and(self, value, kind, where):
        for item in kind["items"]:
            self.check(value, item, where)

    def check_stringLiteral(self, value, kind, where):
        if value != kind["value"]:
            self.fail(where, value, kind["value"])


class Client:
    """One side of the exchange. `asked` has the methods of the requests without a response so far."""

    def __init__(self, wordlex, model):
        self.model = model
        self.server = subprocess.Popen(
            [wordlex, "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.asked = {}
        self.answers = {}
        self.diagnostics = {}
        self.checked = 0
        self.last = 0

    def raw(self, body):
        self.server.stdin.write(b"Content-Length: %d\r\n\r\n%s" % (len(body), body))
        self.server.stdin.flush()

    def hold(self, kind, value, where):
        if self.model is not None:
            self.model.check(value, kind, where)
            self.checked += 1

    def notify(self, method, params=None):
        if self.model is not None and params is not None:
            self.hold(self.model.notifications[method]["params"], params, method)
        message = {"jsonrpc": "2.0", "method": method}
        if params is not None:
            message["params"] = params
        self.raw(json.dumps(message).encode())

    def ask(self, method, params=None):
        self.last += 1
        if self.model is not None and params is not None and method in self.model.requests:
            self.hold(self.model.requests[method]["params"], params, method)
        self.asked[self.last] = method
        message = {"jsonrpc": "2.0", "id": self.last, "method": method}
        if params is not None:
            message["params"] = params
        self.raw(json.dumps(message).encode())
        return self.last

    def read(self):
        length = None
        while True:
            line = self.server.stdout.readline()
            if not line:
                return None
            if line == b"\r\n":
                break
            name, value = line.decode().split(": ")
            if name == "Content-Length":
                length = int(value)
        message = json.loads(self.server.stdout.read(length))
        assert message.pop("jsonrpc") == "2.0", message
        if "method" in message:
            method = message["method"]
            if self.model is not None:
                table = self.model.requests if "id" in message else self.model.notifications
                self.hold(table[method]["params"], message["params"], method)
            if method == "textDocument/publishDiagnostics":
                params = message["params"]
                self.diagnostics[params["uri"]] = params
            if "id" in message:
                self.raw(json.dumps(
                    {"jsonrpc": "2.0", "id": message["id"], "result": None}).encode())
        else:
            self.answers[message["id"]] = message
            method = self.asked.pop(message["id"], None)
            if "error" in message:
                assert set(message["error"]) == {"code", "message"}, message
            elif self.model is not None and method in self.model.requests:
                self.hold(self.model.requests[method]["result"], message["result"], method)
        return message

    def answer(self, number):
        while number not in self.answers:
            if self.read() is None:
                raise AssertionError("the server is gone")
        return self.answers.pop(number)

    def result(self, method, params=None):
        answer = self.answer(self.ask(method, params))
        assert "result" in answer, answer
        return answer["result"]

    def error(self, method, params=None):
        return self.answer(self.ask(method, params))["error"]["code"]

    def findings(self, uri, version):
        while self.diagnostics.get(uri, {}).get("version") != version:
            if self.read() is None:
                raise AssertionError("the server is gone")
        return self.diagnostics[uri]["diagnostics"]


def expect(found, wanted, what):
    if found != wanted:
        raise AssertionError(f"{what}: {json.dumps(found, ensure_ascii=False)}\n"
                             f"expected: {json.dumps(wanted, ensure_ascii=False)}")


def span(line, begin, end):
    return {"start": {"line": line, "character": begin}, "end": {"line": line, "character": end}}


def applied(text, edits):
    """The text after edits, whose positions count UTF-16 units."""
    def offset(position):
        lines = text.split("\n")[:position["line"]]
        before = "".join(line + "\n" for line in lines).encode("utf-16-le")
        return len(before) // 2 + position["character"]
    units = text.encode("utf-16-le")
    for edit in sorted(edits, key=lambda e: offset(e["range"]["start"]), reverse=True):
        begin, end = offset(edit["range"]["start"]), offset(edit["range"]["end"])
        units = units[:2 * begin] + edit["newText"].encode("utf-16-le") + units[2 * end:]
    return units.decode("utf-16-le")


EN = '"$$$/Menu/Open=&Open ^1"\n"$$$/Menu/Close=&Close"\n"$$$/Smile=\U0001F600 ok"\n"$$$/New=New"\n'
DE = ('"$$$/Menu/Open=Ö&ffnen"\n"$$$/Menu/Close=S\\qchlie^[ßen"\n'
      '"$$$/Smile=\U0001F600\U0001F600^x gut"\n')
SOURCE = ('const char* smile = "\U0001F600"; const char* open = "$$$/Menu/Open=&Open ^1";\n'
          'auto close = L"$$$/Menu/Close=&Close";\nauto all = "$$$/Smile=\U0001F600 ok";\n'
          'auto fresh = "$$$/New=New";\n')


class Test:
    def __init__(self, wordlex, model, folder):
        self.folder = folder
        for name, text in {"en.txt": EN, "de.txt": DE, "src/main.cpp": SOURCE,
                           "wordlex.toml": 'reference = "en.txt"\nlanguages = ["*.txt"]\n'
                                           'sources = ["src"]\n'
                                           '[rules]\ndisabled = ["missing-accelerator"]\n'}.items():
            path = os.path.join(folder, name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        self.client = Client(wordlex, model)

    def uri(self, name):
        return "file://" + os.path.join(self.folder, name)

    def at(self, name, line, character):
        return {"textDocument": {"uri": self.uri(name)},
                "position": {"line": line, "character": character}}

    def open(self, name, text, language="wordlex"):
        self.client.notify("textDocument/didOpen", {"textDocument": {
            "uri": self.uri(name), "languageId": language, "version": 1, "text": text}})

    def change(self, name, text, version):
        self.client.notify("textDocument/didChange", {
            "textDocument": {"uri": self.uri(name), "version": version},
            "contentChanges": [{"text": text}]})

    def codes(self, name, version):
        return [(d.get("code"), d["range"]) for d in self.client.findings(self.uri(name), version)]

    def run(self):
        for part in (self.lifecycle, self.findings, self.hover, self.completion, self.definition,
                     self.rename, self.fixes, self.utf16, self.settings, self.faults, self.speed,
                     self.end):
            try:
                part()
            except Exception:
                print("in", part.__name__, file=sys.stderr)
                raise

    def lifecycle(self):
        expect(self.client.error("textDocument/hover", self.at("de.txt", 0, 0)), -32002,
               "before initialize")
        result = self.client.result("initialize", {
            "processId": None, "rootUri": "file://" + self.folder,
            "capabilities": {"textDocument": {"hover": {"contentFormat": ["markdown"]}},
                             "workspace": {"didChangeWatchedFiles": {
                                 "dynamicRegistration": True}}}})
        expect(result["capabilities"]["positionEncoding"], "utf-16", "encoding")
        self.client.notify("initialized", {})

    def findings(self):
        self.open("de.txt", DE)
        expect(self.codes("de.txt", 1), [
            ("missing-marker", span(0, 15, 22)),
            ("unknown-escape", span(1, 17, 19)),
            ("unknown-escape", span(2, 15, 17)),
            ("missing-key", span(0, 0, 0)),
        ], "findings")
        related = self.client.diagnostics[self.uri("de.txt")]["diagnostics"][3]
        expect(related["relatedInformation"][0]["location"],
               {"uri": self.uri("en.txt"), "range": span(3, 4, 8)}, "place in the reference")
        self.change("de.txt", '"$$$/Menu/Open=Ö"\n"$/x=1"\n', 2)
        self.change("de.txt", DE.replace("S\\q", "Sc"), 3)
        expect([code for code, _ in self.codes("de.txt", 3)],
               ["missing-marker", "unknown-escape", "missing-key"], "findings after edits")
        self.change("de.txt", DE, 4)
        self.codes("de.txt", 4)

    def hover(self):
        hover = self.client.result("textDocument/hover", self.at("de.txt", 1, 20))
        text = hover["contents"]["value"]
        for wanted in ("S\\qchlie“ßen", "&Close", "en.txt:2", "src/main.cpp:2", "Id 1"):
            assert wanted in text, (wanted, text)
        expect(hover["range"], span(1, 4, 15), "range of hover")
        self.open("src/main.cpp", SOURCE, "cpp")
        hover = self.client.result("textDocument/hover", self.at("src/main.cpp", 0, 60))
        assert "&Open ^1" in hover["contents"]["value"], hover
        expect(self.client.result("textDocument/hover", self.at("src/main.cpp", 0, 3)), None,
               "hover beside a literal")

    def items(self, name, line, character):
        return {i["label"]: i for i in self.client.result(
            "textDocument/completion", self.at(name, line, character))["items"]}

    def completion(self):
        text = DE + '"$$$/N"\n"$$$/X=a^b\\c#{eu}"\n'
        self.change("de.txt", text, 5)
        items = self.items("de.txt", 3, 6)
        expect(list(items), ["$$$/New"], "keys")
        expect(items["$$$/New"]["textEdit"], {"range": span(3, 1, 6), "newText": "$$$/New="}, "key")
        expect(items["$$$/New"]["detail"], "New", "text of the reference")
        items = self.items("de.txt", 4, 9)
        expect(items["^["]["textEdit"], {"range": span(4, 8, 9), "newText": "^["}, "escape")
        assert "\\n" in self.items("de.txt", 4, 11)
        items = self.items("de.txt", 4, 16)
        expect(items["#{euro}"]["textEdit"], {"range": span(4, 14, 17), "newText": "euro}"},
               "entity")
        self.change("de.txt", DE, 6)

    def definition(self):
        expect(self.client.result("textDocument/definition", self.at("de.txt", 2, 14)),
               [{"uri": self.uri("en.txt"), "range": span(2, 4, 10)}], "to the reference")
        expect(self.client.result("textDocument/definition", self.at("src/main.cpp", 0, 50)),
               [{"uri": self.uri("en.txt"), "range": span(0, 4, 14)}], "from a source")
        self.open("en.txt", EN)
        expect(self.client.result("textDocument/definition", self.at("en.txt", 0, 8)),
               [{"uri": self.uri("src/main.cpp"), "range": span(0, 49, 59)}], "to the source")
        expect(len(self.client.result("textDocument/references", dict(
            self.at("en.txt", 0, 8), context={"includeDeclaration": True}))), 3, "references")

    def rename(self):
        place = self.at("src/main.cpp", 0, 52)
        expect(self.client.result("textDocument/prepareRename", place),
               {"range": span(0, 49, 59), "placeholder": "/Menu/Open"}, "what is renamed")
        changes = self.client.result(
            "textDocument/rename", dict(place, newName="$$$/File/Open"))["changes"]
        expect({uri[uri.rindex("/") + 1:]: applied(text, changes[uri]) for uri, text in (
            (self.uri("en.txt"), EN), (self.uri("de.txt"), DE),
            (self.uri("src/main.cpp"), SOURCE))},
            {"en.txt": EN.replace("/Menu/Open", "/File/Open"),
             "de.txt": DE.replace("/Menu/Open", "/File/Open"),
             "main.cpp": SOURCE.replace("/Menu/Open", "/File/Open")}, "renamed")
        for name, code in (("/Smile", -32803), ("", -32602), ("a=b", -32602), ("$x", -32602)):
            expect(self.client.error("textDocument/rename", dict(place, newName=name)), code,
                   "rename to " + name)

    def fixes(self):
        cases = [  # a line of de.txt, the first fix, the line after it
            ('"$/A=1"', '"$$$/A=1"'),
            ('"$$$/A=C:\\"', '"$$$/A=C:#{U+005C}"'),
            ('"$$$/A=1', '"$$$/A=1"'),
            ('"$$$/A"', '"$$$/A="'),
            ('"$$$/A =1"', '"$$$/A=1"'),
            ('"$$$/A=ab\\qc"', '"$$$/A=ab\\\\qc"'),
            ('"$$$/A=a\U0001F600^x"', '"$$$/A=a\U0001F600^^x"'),
            ('"$$$/A=#{nix}"', '"$$$/A=#{U+0023}{nix}"'),
            ('" $$$/A=1"', '"$$$/A=1"'),
            ('"$$$/A=1"  wordlex: ignore lone-surogate', '"$$$/A=1"  wordlex: ignore lone-surrogate'),
            ('"$$$/Menu/Close=x"  wordlex: stale; from 1a2b3c',
             '"$$$/Menu/Close=x"  wordlex: from 1a2b3c'),
            ('"$$$/Gone=1"', ''),
        ]
        for version, (line, wanted) in enumerate(cases, 100):
            self.change("de.txt", line + "\n", version)
            length = len(line.encode("utf-16-le")) // 2
            actions = self.client.result("textDocument/codeAction", {
                "textDocument": {"uri": self.uri("de.txt")}, "range": span(0, 1, length),
                "context": {"diagnostics": []}})
            uri = self.uri("de.txt")
            results = [applied(line + "\n", a["edit"]["changes"][uri]).rstrip("\n")
                       for a in actions]
            assert wanted in results, (line, wanted, results)
        self.change("de.txt", DE, 200)
        actions = self.client.result("textDocument/codeAction", {
            "textDocument": {"uri": self.uri("de.txt")}, "range": span(0, 0, 0),
            "context": {"diagnostics": []}})
        added = applied(DE, actions[0]["edit"]["changes"][self.uri("de.txt")])
        lines = added.splitlines()
        assert lines[:3] == DE.splitlines() and lines[3].startswith('"$$$/New=New"  wordlex: '), added

    def utf16(self):
        """The loader splits UTF-16 at U+2028; editors do not."""
        with open(os.path.join(self.folder, "wide.txt"), "wb") as file:
            file.write(b"\xff\xfe")
        self.open("wide.txt", '"$$$/A=1" \u2028 "$$$/B=\\q"\n"$$$/C=\\q"\n')
        found = [f for f in self.codes("wide.txt", 1) if f[0] == "unknown-escape"]
        expect(found, [
            ("unknown-escape", span(0, 19, 21)), ("unknown-escape", span(1, 7, 9))], "UTF-16")
        self.client.notify("textDocument/didClose", {"textDocument": {"uri": self.uri("wide.txt")}})

    def settings(self):
        self.open("wordlex.toml", 'reference = "en.txt"\nlanguges = []\n', "toml")
        found = self.client.findings(self.uri("wordlex.toml"), 1)
        expect([(d["range"]["start"]["line"], d["message"]) for d in found],
               [(1, 'there is no setting "languges"; did you mean "languages"?')], "settings")

    def faults(self):
        for body, code in ((b"{", -32700), (b"\xff", -32700), (b"[]", -32600), (b"1", -32600),
                           (b'{"id":[[]],"method":"shutdown"}', -32600)):
            self.client.raw(body)
            expect(self.client.answer(None)["error"]["code"], code, body.decode("latin-1"))
        for method, params, code in (
                ("nothing/known", {}, -32601),
                ("initialize", None, -32600),
                ("textDocument/hover", None, -32602),
                ("textDocument/hover", self.at("absent.txt", 0, 0), -32602)):
            number = self.client.last = self.client.last + 1
            message = {"jsonrpc": "2.0", "id": number, "method": method, "params": params}
            self.client.raw(json.dumps(message).encode())
            expect(self.client.answer(number)["error"]["code"], code, method)
        self.client.raw(b'{"method":"textDocument/didChange","params":[]}')
        # Positions beyond the text, and a request that is cancelled while it waits.
        for place in (self.at("de.txt", 99, 0), self.at("de.txt", 0, 4000000000)):
            self.client.result("textDocument/completion", place)
            self.client.result("textDocument/hover", place)
        request = {"jsonrpc": "2.0", "id": "late", "method": "textDocument/hover",
                   "params": self.at("de.txt", 0, 6)}
        cancel = {"jsonrpc": "2.0", "method": "$/cancelRequest", "params": {"id": "late"}}
        both = b"".join(b"Content-Length: %d\r\n\r\n%s" % (len(body), body) for body in
                        (json.dumps(request).encode(), json.dumps(cancel).encode()))
        self.client.server.stdin.write(both)
        self.client.server.stdin.flush()
        expect(self.client.answer("late").get("error", {}).get("code"), -32800, "cancelled")

    def speed(self):
        line = '"$$$/Group{0}/Item{0}=Eine Zeile mit Text und &Kürzel, Nummer {0}"\n'
        text = "".join(line.format(i) for i in range(10000))
        self.change("en.txt", text, 300)
        self.change("de.txt", text, 300)
        self.codes("de.txt", 300)
        times = []
        for version in range(301, 306):
            begin = time.monotonic()
            self.change("de.txt", text + f'"$$$/Last={version}"\n', version)
            self.codes("de.txt", version)
            times.append(time.monotonic() - begin)
        print(f"an edit of 10,000 lines: {1000 * min(times):.0f} ms")

    def end(self):
        self.client.result("shutdown")
        expect(self.client.error("textDocument/hover", self.at("de.txt", 0, 0)), -32600,
               "after shutdown")
        self.client.notify("exit")
        expect(self.client.server.wait(timeout=60), 0, "exit code")


def main():
    wordlex = sys.argv[1]
    path = sys.argv[2] if len(sys.argv) > 2 else ""
    model = Model(path) if os.path.exists(path) else None
    if model is None:
        print("no metaModel.json: the messages are not checked against the protocol")
    with tempfile.TemporaryDirectory() as folder:
        test = Test(wordlex, model, os.path.realpath(folder))
        try:
            test.run()
        finally:
            test.client.server.kill()
        print(f"{test.client.checked} messages conform to the protocol")
    if model is not None and test.client.checked < 50:
        sys.exit("too few messages were checked against the protocol")


if __name__ == "__main__":
    main()
