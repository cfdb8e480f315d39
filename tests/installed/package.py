#!/usr/bin/env python3
"""Installs the library into a prefix of its own, moves that elsewhere, and builds programs against it as users do.

usage: package.py BUILD_FOLDER [unittest's arguments]
"""
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = HERE.parent.parent
BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
VERSION = re.search(r"project\(orvik VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text()).group(1)
MAJOR = VERSION.split(".")[0]
LIBRARIES = ["liborvikframe", "libORVIKIPLFeatureDetection"]


def run(*command, **options):
    return subprocess.run(list(map(str, command)), text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          **options)


class InstalledPackage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="installed ")  # with a blank, as folders of users have
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        installed = run("cmake", "--install", BUILD, "--prefix", cls.folder / "first")
        if installed.returncode:
            raise RuntimeError(installed.stdout)
        cls.prefix = cls.folder / "moved"
        (cls.folder / "first").rename(cls.prefix)
        cls.headers = cls.prefix / "include/orvik"
        cls.libraries = next(cls.prefix.glob("lib/**/liborvikframe.so")).parent

    def succeed(self, *command, **options):
        done = run(*command, **options)
        self.assertEqual(0, done.returncode, f"{' '.join(map(str, command))}\n{done.stdout}")
        return done.stdout

    def configure(self, name, *settings):
        return run("cmake", "-S", HERE, "-B", self.folder / name, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={self.prefix}",
                   "-DCMAKE_BUILD_TYPE=Release", *settings)

    def assert_frame_works(self, program, **options):
        self.assertEqual("2 3\n", self.succeed(program, **options))

    def assert_library_works(self, program, **options):
        told = self.succeed(program, **options).splitlines()
        self.assertRegex(told[0], r"edges ([5-9]\d), plainly 0 different")
        self.assertEqual(["corners 4 of 4", "votes 1, lines 1"], told[1:3])
        self.assertRegex("\n".join(told[3:]), r"InGxGreyImg2d.*64.*65")

    def test_libraries_are_named_by_version_and_find_each_other(self):
        for name in LIBRARIES:
            library = self.libraries / f"{name}.so.{VERSION}"
            self.assertTrue(library.is_file() and not library.is_symlink())
            self.assertEqual(f"{name}.so.{VERSION}", os.readlink(self.libraries / f"{name}.so.{MAJOR}"))
            self.assertEqual(f"{name}.so.{MAJOR}", os.readlink(self.libraries / f"{name}.so"))
            told = self.succeed("readelf", "-d", library)
            self.assertIn(f"Library soname: [{name}.so.{MAJOR}]", told)
            self.assertIn("runpath: [$ORIGIN]", told)

    def test_no_file_names_a_folder_of_the_machine_that_built_it(self):
        named = [str(path) for path in self.prefix.rglob("*") if path.is_file()
                 for folder in (SOURCE, self.folder) if os.fsencode(folder) in path.read_bytes()]
        self.assertEqual([], named)

    def test_each_header_compiles_alone_without_a_warning(self):
        def fault(header):
            unit = f'#include "{header.relative_to(self.headers)}"\n'
            done = run("c++", "-std=c++17", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-fsyntax-only", "-x", "c++",
                       f"-I{self.headers}", "-", input=unit)
            return done.returncode and f"{header}: {done.stdout}"
        headers = sorted(self.headers.rglob("*.h"))
        public = SOURCE / "include/public"
        self.assertLessEqual({str(header.relative_to(public)) for header in public.rglob("*.h")},
                             {str(header.relative_to(self.headers)) for header in headers})
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            self.assertEqual([], [told for told in pool.map(fault, headers) if told])

    def test_the_umbrella_header_has_all_public_functions(self):
        umbrella = (self.headers / "ORVIKIPLFeatureDetection.h").read_text()
        for header in (self.headers / "Processor").rglob("*Lvl1.h"):
            self.assertIn(f'#include "{header.relative_to(self.headers)}"\n', umbrella)

    def test_cmake_builds_programs_on_both_components(self):
        configured = self.configure("both")
        self.assertEqual(0, configured.returncode, configured.stdout)
        self.succeed("cmake", "--build", self.folder / "both")
        self.assert_frame_works(self.folder / "both/frameConsumer")
        self.assert_library_works(self.folder / "both/consumer")

    def test_the_readme_is_a_project(self):
        project = self.folder / "readme"
        project.mkdir()
        for kind, name in ("cpp", "edges.cpp"), ("cmake", "CMakeLists.txt"):
            (project / name).write_text(re.search(f"```{kind}\n(.*?)```", (SOURCE / "README.md").read_text(), re.S).group(1))
        self.succeed("cmake", "-S", project, "-B", project / "build", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={self.prefix}")
        self.succeed("cmake", "--build", project / "build")
        self.succeed(project / "build/edges")

    def test_cmake_gives_the_frame_alone_or_everything_where_nothing_is_named(self):
        for name, components, programs in ("one", "frame", ["frameConsumer"]), ("all", "", ["consumer", "frameConsumer"]):
            configured = self.configure(name, f"-DORVIK_COMPONENTS={components}")
            self.assertEqual(0, configured.returncode, configured.stdout)
            rules = (self.folder / name / "build.ninja").read_text()
            self.assertEqual(programs, sorted(re.findall(r"^build (consumer|frameConsumer):", rules, re.M)))

    def test_cmake_refuses_what_there_is_not(self):
        configured = self.configure("unknown", "-DORVIK_COMPONENTS=frame;volumes")
        self.assertNotEqual(0, configured.returncode)
        self.assertIn("orvik has no component 'volumes', only frame and library", configured.stdout)
        configured = self.configure("newer", "-DORVIK_VERSION=0.2")
        self.assertNotEqual(0, configured.returncode)
        self.assertIn(f"version: {VERSION}", configured.stdout)

    def test_pkg_config_tells_how_to_compile_and_link(self):
        environment = dict(os.environ, PKG_CONFIG_PATH=str(self.libraries / "pkgconfig"))
        self.assertEqual(VERSION, self.succeed("pkg-config", "--modversion", "orvik", env=environment).strip())
        # As in a makefile: the shell takes pkg-config's words, in which a blank has a backslash.
        self.succeed("sh", "-c", 'eval c++ "$0" -o "$1" $(pkg-config --cflags --libs orvik)', HERE / "consumer.cpp",
                     "with-pkg-config", cwd=self.folder, env=environment)
        self.assert_library_works(self.folder / "with-pkg-config",
                                  env=dict(os.environ, LD_LIBRARY_PATH=str(self.libraries)))


if __name__ == "__main__":
    unittest.main(verbosity=2)
