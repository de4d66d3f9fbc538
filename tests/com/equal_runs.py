"""One list of operations, run by the native library and by scripts through COM."""

import json
import re
import sqlite3


def read_operations(path, replacements):
    with open(path, encoding="utf-8") as file:
        text = file.read()
    for name, value in replacements.items():
        text = text.replace(f"<{name}>", value)
    return [json.loads(line) for line in text.splitlines()]


def given(operation):
    """The arguments without those left out at the end."""
    arguments = list(operation["args"])
    while arguments and arguments[-1] is None:
        arguments.pop()
    return arguments


def for_jscript(operations):
    """JScript can leave nothing out in the middle, and its arrays are objects."""
    return [operation for operation in operations
            if not any(argument is None or isinstance(argument, list)
                       for argument in given(operation))]


def is_read(operation):
    return operation["op"].endswith("Read")


def jscript(operations):
    lines = ["openOutput('answers.txt');", "var service = newService();"]
    for operation in operations:
        arguments = ", ".join(json.dumps(argument) for argument in given(operation))
        call = f"service.{operation['op']}({arguments})"
        lines.append(f"answer(function() {{ return {call}; }});")
    lines += ["service = null;", "CollectGarbage();", "outputFile.Close();", "finish(0);"]
    return """
function answer(call) {
  var table;
  try {
    table = call();
  } catch (error) {
    outputFile.WriteLine("error " + numberOf(error) + " " + shown(error.description));
    return;
  }
  if (table === undefined) {
    outputFile.WriteLine("ok");
  } else {
    writeTable(table);
  }
}
""" + "\n".join(lines) + "\n"


class VbscriptTexts:
    """Sources are read as the system's own 8-bit characters, so what is not ASCII is
    read from a file of lines."""

    def __init__(self):
        self.lines = []

    def expression(self, text):
        parts = []
        for part in re.findall(r"[ -~]+|[\x00-\x1f\x7f]|[^\x00-\x7f]+", text):
            if part.isascii() and part.isprintable():
                parts.append('"' + part.replace('"', '""') + '"')
            elif part.isascii():
                parts.append(f"Chr({ord(part)})")
            else:
                parts.append(f"texts({len(self.lines)})")
                self.lines.append(part)
        return " & ".join(parts) or '""'


def vbscript_argument(argument, texts):
    if argument is None:
        return ""
    if isinstance(argument, bool):
        return str(argument)
    if isinstance(argument, list):
        return "Array(" + ", ".join(vbscript_argument(each, texts) for each in argument) + ")"
    if isinstance(argument, str):
        return texts.expression(argument)
    return str(argument)


def vbscript(operations):
    """The script, and the lines of the file texts.txt that it reads."""
    texts = VbscriptTexts()
    calls = []
    for operation in operations:
        arguments = ", ".join(vbscript_argument(argument, texts) for argument in given(operation))
        if is_read(operation):
            calls += [f"Set table = service.{operation['op']}({arguments})", "Answer table"]
        else:
            calls += [f"service.{operation['op']} {arguments}", "Answer Nothing"]
    return """
Sub Answer(table)
  If Err.Number <> 0 Then
    outputFile.WriteLine "error " & Err.Number & " " & Shown(Err.Source) & " " & _
      Shown(Err.Description)
    Err.Clear
  ElseIf table Is Nothing Then
    outputFile.WriteLine "ok"
  Else
    WriteTable table
  End If
End Sub

Dim service, table, texts(500), files, file, known
OpenOutput "answers.txt"
Set files = CreateObject("Scripting.FileSystemObject")
Set file = files.OpenTextFile(outputFolder & "\\texts.txt", 1, False, -1)
known = 0
Do Until file.AtEndOfStream
  texts(known) = file.ReadLine
  known = known + 1
Loop
Set service = NewService()
On Error Resume Next
""" + "\n".join(calls) + """
On Error Goto 0
Set service = Nothing
outputFile.Close
Finish 0
""", texts.lines


def shown(value):
    if value is None:
        return "Null"
    escaped = value.replace("\\", "\\\\").replace("\r", "\\r").replace("\n", "\\n")
    return f"'{escaped}'"


def answer_lines(answer, with_source):
    """A native answer as the scripts write theirs."""
    if not answer["ok"]:
        error = answer["error"]
        source = shown(error["source"]) + " " if with_source else ""
        return [f"error {error['number']} {source}{shown(error['description'])}"]
    if "result" not in answer:
        return ["ok"]
    table = answer["result"]
    lines = [" ".join(["headers", *map(shown, table["headers"])])]
    return lines + [" ".join(["row", *map(shown, row)]) for row in table["rows"]]


def trace(path):
    """The events without time and process."""
    with open(path, encoding="utf-8") as file:
        return [re.sub(r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{6} \d+ ", "", line)
                for line in file.read().splitlines()]


def tables(path):
    """Every row of every table, each as one line."""
    database = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
    names = [name for name, in database.execute(
        "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name")]
    lines = [f"{name}: {row}" for name in names
             for row in database.execute(f'SELECT rowid, * FROM "{name}" ORDER BY rowid')]
    database.close()
    return lines
