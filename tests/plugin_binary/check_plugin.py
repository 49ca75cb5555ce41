#!/usr/bin/env python3
"""What holds of the built plug-in and of its headers, read from the files themselves.

usage: check_plugin.py LIBRARY INCLUDE_FOLDER FRAMEWORK_LIBRARY [unittest arguments]
(FRAMEWORK_LIBRARY may be "-" where only the plug-in was built: what needs it is skipped then, by name.)
"""

import ctypes
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

LIBRARY, INCLUDES, FRAMEWORK = sys.argv[1:4]
HEADERS = sorted(path.name for path in pathlib.Path(INCLUDES).glob("*.h"))
UNWANTED = re.compile(r"(m|c|re|p?v)alloc|reallocarray|aligned_alloc|posix_memalign|memalign|w?cs(n?)dup|strn?dup|"
                      r"v?asprintf|getline|getdelim|open_memstream|_Zn[wa].*|_Unwind_.*|__gxx_.*|"
                      r"__cxa_(throw|alloc|begin|end).*")
# What the C and C++ runtimes give: names with their versions, and the hooks every library of the compiler's refers to.
RUNTIME = re.compile(r".+@(GLIBC|GLIBCXX|CXXABI|GCC)_[0-9.]+|_ITM_(de)?registerTMCloneTable|__gmon_start__|__cxa_finalize.*")


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def declared_in(header):
    """Names of the functions and data that one header declares."""
    text = re.sub(r"/\*.*?\*/|#(?:\\\n|[^\n])*", "", pathlib.Path(INCLUDES, header).read_text(), flags=re.S)
    text = text.replace('extern "C" {', "")
    while "{" in text:
        text = re.sub(r"\{[^{}]*\}", "", text)
    found = [re.search(r"(\w+)\s*\(", declaration) or re.search(r"\bextern\b.*?(\w+)\s*(\[\])?\s*$", declaration)
             for declaration in text.split(";") if "typedef" not in declaration]
    return {name[1] for name in found if name}


def symbols(*options):
    """(name with version, kind) for each dynamic symbol that nm lists."""
    return [line.split()[:-3:-1] for line in output_of("nm", "-D", *options, LIBRARY).splitlines()]


class files(unittest.TestCase):
    maxDiff = None

    def test_each_header_compiles_alone(self):
        runs = 0
        for compiler, standard in (("gcc", "c11"), ("clang-14", "c11"), ("g++", "c++20"), ("clang++-14", "c++20")):
            for header in HEADERS if shutil.which(compiler) else ():
                # Included twice, so that a header without its guard is seen too.
                text = f'#include "{header}"\n#include "{header}"\nextern int unused;\n'
                run = subprocess.run([compiler, f"-std={standard}", "-x", standard.rstrip("0123456789"), "-Wall", "-Wextra",
                                      "-Wpedantic", "-Werror", f"-I{INCLUDES}", "-fsyntax-only", "-"],
                                     input=text, text=True, capture_output=True)
                self.assertEqual((run.returncode, run.stderr), (0, ""), f"{compiler} {header}")
                runs += 1
        self.assertGreaterEqual(runs, 2 * 5)

    def test_exports_exactly_what_its_header_declares(self):
        exported = {name for name, _ in symbols("--defined-only")}
        self.assertGreaterEqual(len(exported), 90)
        self.assertEqual(exported, declared_in("oc_chmon.h"))

    def test_needs_exactly_the_contract_and_the_runtime(self):
        needed = symbols("--undefined-only")
        names = {name.partition("@")[0] for name, _ in needed}
        client = declared_in("ostore.h") | declared_in("parcel.h")
        from_host = {name for name, _ in needed if not RUNTIME.fullmatch(name)} | names & {"access"}
        self.assertEqual(from_host, {"access"} | client | declared_in("dtf.h"))
        weak = {name for name, kind in needed if kind in "wv"}
        self.assertLessEqual(client, weak)
        self.assertFalse(weak & declared_in("dtf.h"))
        # It allocates nothing and throws nothing.
        self.assertEqual({name for name in names if UNWANTED.fullmatch(name)}, set())
        self.assertIn("__assert_fail", names)

    def test_full_relro_and_no_text_relocations_exception_tables_or_type_information(self):
        self.assertIn("GNU_RELRO", output_of("readelf", "-lW", LIBRARY))
        dynamic = output_of("readelf", "-dW", LIBRARY)
        self.assertRegex(dynamic, r"\bBIND_NOW\b|FLAGS_1.*\bNOW\b")
        self.assertNotRegex(dynamic, r"TEXTREL|RPATH|RUNPATH")
        self.assertNotIn(".gcc_except_table", output_of("readelf", "-SW", LIBRARY))
        self.assertNotRegex(output_of("nm", LIBRARY), r"\b_ZT[ISV]")

    @unittest.skipIf(FRAMEWORK == "-", "libdtf.so is not part of this build")
    def test_loads_and_answers_without_the_client(self):
        ctypes.CDLL(FRAMEWORK, os.RTLD_NOW | os.RTLD_GLOBAL)
        plugin = ctypes.CDLL(LIBRARY, os.RTLD_NOW | os.RTLD_LOCAL)
        self.assertFalse(hasattr(ctypes.CDLL(None), "_ostore_bind"))
        name = ctypes.create_string_buffer(20)
        plugin.convert_ctrl_key_to_chmon_key(b"Ots0/2/0/1", name)
        self.assertEqual(name.value, b"0/2-CHMON-PRE")
        # A context of zeros: no log, no trace buffer, no request.
        self.assertEqual(plugin.check_controller_name_ots_is_good(ctypes.create_string_buffer(4096), b"Ots0/2/0/1"), 0)


unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
