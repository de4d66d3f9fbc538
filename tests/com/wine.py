"""Programs for Windows in a private Wine prefix."""

import os
import re
import resource
import shutil
import subprocess

MOST_OUTPUT = 4 << 20  # bytes of one program that are looked at
LARGEST_FILE = 256 << 20  # bytes that a program may write into one file


class Wine:
    """A prefix of its own in `folder`; stop() ends whatever runs in it."""

    def __init__(self, folder):
        self.folder = folder
        self.prefix = os.path.join(folder, "prefix")
        self.environment = {
            **os.environ,
            "WINEPREFIX": self.prefix,
            "WINEARCH": "win64",
            "WINEDEBUG": "-all",
            "WINEDLLOVERRIDES": "mscoree=;mshtml=;winemenubuilder.exe=d",
            "LC_ALL": "C.UTF-8",
            # A message box would wait for somebody to press its button.
            "LOTRIX_NOTIFY": "stderr",
        }
        for name in ("DISPLAY", "LOTRIX_LOG", "LOTRIX_CONNECTION"):
            self.environment.pop(name, None)
        self.runs = 0

    def start(self):
        code, _, errors = self.run(["wineboot", "-i"], seconds=180, program=())
        if code != 0:
            raise RuntimeError(f"wineboot: {code}\n{errors}")

    def stop(self):
        for argument in ("-k", "-w"):
            subprocess.run(["timeout", "30", "wineserver", argument], env=self.environment,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        self.remove_sockets()

    def remove_sockets(self):
        """The folder of the prefix's server, which Wine leaves behind; its name is in
        the prefix."""
        try:
            with open(os.path.join(self.prefix, "wineserver"), encoding="ascii") as file:
                name = file.read().strip()
        except OSError:
            return
        if re.fullmatch(r"wine-\w+", name):
            shutil.rmtree(os.path.join("/tmp", name), ignore_errors=True)

    def run(self, arguments, seconds=90, program=("wine",), **environment):
        """Exit code, and what the program says on stdout and stderr."""
        self.runs += 1
        paths = [os.path.join(self.folder, f"{self.runs}.{kind}") for kind in ("out", "err")]
        with open(paths[0], "wb") as out, open(paths[1], "wb") as err:
            code = subprocess.run(
                ["timeout", "-k", "5", str(seconds), *program, *arguments],
                env={**self.environment, **environment}, cwd=self.folder,
                stdin=subprocess.DEVNULL, stdout=out, stderr=err, check=False,
                preexec_fn=limit_files).returncode
        texts = []
        for path in paths:
            with open(path, "rb") as file:
                text = file.read(MOST_OUTPUT).decode("utf-8", errors="replace")
                texts.append(text.replace("\r\n", "\n"))
        return code, texts[0], texts[1]

    def windows_path(self, path):
        return "Z:" + path.replace("/", "\\")

    def registry(self, key):
        """The exported text of a key and all below it; empty where there is none."""
        path = os.path.join(self.folder, "export.reg")
        if os.path.exists(path):
            os.remove(path)
        self.run(["reg", "export", key, self.windows_path(path), "/y"])
        if not os.path.exists(path):
            return ""
        with open(path, encoding="utf-16") as file:
            return file.read()


def limit_files():
    resource.setrlimit(resource.RLIMIT_FSIZE, (LARGEST_FILE, LARGEST_FILE))
