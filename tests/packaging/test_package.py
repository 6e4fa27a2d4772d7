"""What an installation brings, looked at in a folder: nothing of the system or of the person who runs this is touched."""
import gzip
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

BUILD = pathlib.Path(os.environ["KESTREL_BUILD"])
SOURCE = pathlib.Path(__file__).resolve().parents[2]
ID = "app.kestrel.Kestrel"


def run(*command, **options):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)


def output(*command, **options):
    done = run(*command, **options)
    if done.returncode:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def setUpModule():
    global FOLDER, PREFIX, KESTREL
    FOLDER = pathlib.Path(tempfile.mkdtemp(prefix="kestrel-package-"))
    unittest.addModuleCleanup(shutil.rmtree, FOLDER)
    first = FOLDER / "first"
    for component in ("kestrel", "relocatable"):
        output("cmake", "--install", BUILD, "--prefix", first, "--component", component)
    # the name is awkward and another than at the installation: whoever unpacks the folder chooses
    PREFIX = FOLDER / "moved here $HOME"
    first.rename(PREFIX)
    KESTREL = PREFIX / "bin/kestrel"


def verbs():
    listed = output(KESTREL, "--help").split("Verbs:\n")[1].split("\n\n")[0]
    return [line.split()[0] for line in listed.splitlines()]


def options(verb):
    usage = output(KESTREL, verb, "--help").split("\n\n")[0]
    return set(re.findall(r"--[a-z-]+", usage))


def subcommands(verb):
    usage = output(KESTREL, verb, "--help").splitlines()[0].split(verb, 1)[1]
    return {part.split()[0] for part in usage.split("|")}


def complete_in_bash(words):
    script = """
        source /usr/share/bash-completion/bash_completion; source "$1"; shift
        COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMP_LINE="$*"; COMP_POINT=${#COMP_LINE}
        _kestrel; printf '%s\\n' "${COMPREPLY[@]}" """
    file = PREFIX / "share/bash-completion/completions/kestrel"
    return output("bash", "-c", script, "bash", file, *words).split()


def complete_in_fish(words):
    file = PREFIX / "share/fish/vendor_completions.d/kestrel.fish"
    script = 'source $argv[1]; complete -C "$argv[2]"'
    lines = output("fish", "--no-config", "-c", script, file, " ".join(words)).splitlines()
    return [line.split("\t")[0] for line in lines]


def complete_in_zsh(words):
    """A real shell on a terminal of its own, because zsh completes nothing outside its line editor."""
    script = r"""
        zmodload zsh/zpty
        zpty shell zsh -f -i
        zpty -w shell 'PS1=; fpath=("$COMPLETIONS" $fpath); autoload -Uz compinit; compinit -u -D; setopt no_list_beep'
        zpty -w shell 'zstyle ":completion:*" list-separator " "; LISTMAX=1000; COLUMNS=200; LINES=100'
        zpty -w shell 'ready() { print -r -- "<re""ady>" }; stop() { print -r -- "<en""d>"; exit }'
        zpty -w shell 'list() { zle -M ""; zle list-choices; zle -R; print -r -- "<st""op>" }; zle -N list; bindkey "^X" list; ready'
        zpty -r shell said '*<ready>*'
        zpty -w -n shell "$1"$'\x18'
        zpty -r shell said '*<stop>*'
        print -r -- "$said"
    """
    environment = dict(os.environ, COMPLETIONS=str(PREFIX / "share/zsh/vendor-completions"), TERM="xterm", LANG="C")
    shown = output("zsh", "-f", "-c", script, "zsh", " ".join(words), env=environment)
    # columns of bare words, or one word a line and what it means
    return re.split(r"\s{2,}|\n", re.sub(r"\x1b\[[0-9;?]*[A-Za-z]", "\n", shown.split("<ready>")[-1]))


class Package(unittest.TestCase):
    def test_holds_what_it_should_and_nothing_of_the_workshop(self):
        for path in ["libexec/kestrel/app.kestrel.kestrel.sdPlugin/manifest.json",
                     "libexec/kestrel/app.kestrel.kestrel.sdPlugin/images/plugin.png",
                     f"share/applications/{ID}.desktop", f"share/metainfo/{ID}.metainfo.xml",
                     f"share/icons/hicolor/scalable/apps/{ID}.svg", f"share/icons/hicolor/16x16/apps/{ID}.png",
                     f"share/icons/hicolor/512x512/apps/{ID}.png",
                     f"share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg",
                     f"share/kestrel/autostart/{ID}.desktop", "share/kestrel/browser-extension/manifest.json",
                     "share/kestrel/sounds/Glass.oga", "share/man/man1/kestrel.1.gz", "share/doc/kestrel/copyright"]:
            self.assertTrue((PREFIX / path).is_file(), path)
        # the bus needs an absolute path, which a folder that moves has not
        self.assertFalse((PREFIX / "share/dbus-1").exists())
        programs = {str(path.relative_to(PREFIX)) for path in PREFIX.rglob("*")
                    if path.is_file() and os.access(path, os.X_OK)}
        plugin = "libexec/kestrel/app.kestrel.kestrel.sdPlugin/kestrel-streamdeck-plugin"
        self.assertEqual(programs, {"bin/kestrel", "libexec/kestrel/kestrel-app", "libexec/kestrel/kestrel-browser-helper",
                                    "libexec/kestrel/kestrel-browser-relay", plugin, "share/kestrel/uninstall"})

    def test_versions_agree(self):
        version = os.environ["KESTREL_VERSION"]
        self.assertEqual(output(KESTREL, "--version"), f"kestrel {version}\n")
        component = xml.etree.ElementTree.parse(PREFIX / f"share/metainfo/{ID}.metainfo.xml")
        self.assertEqual(component.find("releases/release").get("version"), version)
        with gzip.open(PREFIX / "share/doc/kestrel/changelog.gz", "rt") as changelog:
            self.assertEqual(changelog.readline().split()[1], f"({version})")

    def test_programs_find_each_other(self):
        """The browser is told the relay's place, the bus the helper's."""
        data = FOLDER / "data"
        (data / "home/.config/chromium").mkdir(parents=True)
        output(KESTREL, "browser", "install", "--data", data)
        manifest = data / "home/.config/chromium/NativeMessagingHosts/app.kestrel.kestrel.json"
        relay = json.loads(manifest.read_text())["path"]
        self.assertTrue(os.path.samefile(relay, PREFIX / "libexec/kestrel/kestrel-browser-relay"), relay)

        output("cmake", "--install", BUILD, "--prefix", "/usr", "--component", "bus-service",
               env=dict(os.environ, DESTDIR=str(FOLDER / "system")))
        service = FOLDER / f"system/usr/share/dbus-1/services/{ID}.ChromeLauncher.service"
        self.assertEqual(service.read_text(), f"[D-BUS Service]\nName={ID}.ChromeLauncher\n"
                                              "Exec=/usr/libexec/kestrel/kestrel-browser-helper\n")

    def test_desktops_take_the_files(self):
        entry = PREFIX / f"share/applications/{ID}.desktop"
        output("desktop-file-validate", entry, PREFIX / f"share/kestrel/autostart/{ID}.desktop")
        output("appstreamcli", "validate", "--no-net", PREFIX / f"share/metainfo/{ID}.metainfo.xml")
        output("mandoc", "-T", "lint", "-W", "warning", PREFIX / "share/man/man1/kestrel.1.gz")
        commands = re.findall(r"^Exec=kestrel ?(.*)$", entry.read_text(), re.M)
        self.assertEqual(set(commands) - set(verbs()), {""})

    def test_manual_knows_every_verb_and_option(self):
        manual = output("mandoc", "-T", "utf8", PREFIX / "share/man/man1/kestrel.1.gz")
        manual = re.sub(".\b", "", manual)
        for verb in verbs():
            self.assertRegex(manual, rf"(?m)^     {verb}\b")
            for option in options(verb):
                self.assertIn(option, manual)
        for verb in ("accounts", "browser"):
            for word in subcommands(verb):
                self.assertRegex(manual, rf"(?m)^     {verb} {word}\b")
        for option in re.findall(r"--[a-z-]+", output(KESTREL, "--help")):
            self.assertIn(option, manual)

    def test_shells_complete_what_there_is(self):
        actions = set(re.findall(r"meet[A-Z]\w*", output(KESTREL, "action", "--help"))) | {"join"}
        for shell in (complete_in_bash, complete_in_fish, complete_in_zsh):
            with self.subTest(shell.__name__):
                self.assertLessEqual(set(verbs()), set(shell(["kestrel", ""])))
                for verb in verbs():
                    self.assertLessEqual(options(verb), set(shell(["kestrel", verb, "--"])), verb)
                self.assertLessEqual(actions, set(shell(["kestrel", "action", ""])))
                for verb in ("accounts", "browser"):
                    self.assertLessEqual(subcommands(verb), set(shell(["kestrel", verb, ""])))

    def test_uninstall_takes_what_was_installed_for_one_person_and_no_more(self):
        home = FOLDER / "home"
        own = home / ".local/opt/kestrel"
        own.parent.mkdir(parents=True)
        shutil.copytree(PREFIX, own)
        (home / ".local/bin").mkdir()
        (home / ".local/bin/kestrel").symlink_to(own / "bin/kestrel")
        helper = own / "libexec/kestrel/kestrel-browser-helper"
        relay = own / "libexec/kestrel/kestrel-browser-relay"
        installed = {f".local/share/applications/{ID}.desktop": f'Exec="{own}/bin/kestrel"\n',
                     f".local/share/dbus-1/services/{ID}.ChromeLauncher.service": f"Exec='{helper}'\n",
                     f".local/share/icons/hicolor/16x16/apps/{ID}.png": "",
                     f".local/share/icons/hicolor/scalable/apps/{ID}.svg": "",
                     f".local/share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg": "",
                     f".config/autostart/{ID}.desktop": f'Exec="{own}/bin/kestrel"\n',
                     ".config/chromium/NativeMessagingHosts/app.kestrel.kestrel.json": f'{{"path": "{relay}"}}',
                     ".config/BraveSoftware/Brave-Browser/NativeMessagingHosts/app.kestrel.kestrel.json":
                         f'{{"path": "{relay}"}}'}
        others = {".config/kestrel/kestrel.ini": "[General]\n", ".local/share/kestrel/browser-extension/manifest.json": "{}",
                  ".local/share/icons/hicolor/16x16/apps/another.png": "",
                  ".config/google-chrome/NativeMessagingHosts/app.kestrel.kestrel.json": '{"path": "/usr/libexec/kestrel"}'}
        for path, text in (installed | others).items():
            (home / path).parent.mkdir(parents=True, exist_ok=True)
            (home / path).write_text(text)
        environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        environment["HOME"] = str(home)
        uninstall = own / "share/kestrel/uninstall"

        output(uninstall, env=environment)

        left = {str(path.relative_to(home)) for path in home.rglob("*") if not path.is_dir()}
        self.assertEqual(left, set(others))


if __name__ == "__main__":
    program = unittest.main(exit=False, verbosity=2)
    sys.exit(0 if program.result.wasSuccessful() and program.result.testsRun else 1)
