#!/usr/bin/env python3
"""Fails when code outside the kernels of an instruction set uses its registers: such code might run on a machine that
lacks the set. Reads the compiled units and the linked libraries with objdump.

usage: checkRegisters.py BUILD_FOLDER
"""
import pathlib
import re
import subprocess
import sys

SETS = {"sse2": 1, "avx": 5, "avx2": 7, "avx512": 8}
FUNCTION = re.compile(r"^[0-9a-f]+ <(.+)>:$")
# Instructions of AVX and later begin with v; the two of virtualisation that do too never occur here.
VECTOR = re.compile(r"^\s+[0-9a-f]+:\s+(?:\{\w+\} )?(v[a-z0-9]+)\s*(.*)$")
WIDEST = re.compile(r"%zmm|%k[0-7]|%[xy]mm(?:1[6-9]|2[0-9]|3[01])")


def vector_functions(path):
    """Set that each function of a file needs: 5 for AVX and AVX2, which share their registers, 8 for AVX-512."""
    needs = {}
    function = None
    listing = subprocess.run(["objdump", "-d", "-C", "--no-show-raw-insn", path], check=True, text=True,
                             stdout=subprocess.PIPE)
    for line in listing.stdout.splitlines():
        head = FUNCTION.match(line)
        if head:
            function = head.group(1)
            continue
        instruction = VECTOR.match(line)
        if instruction:
            needed = 8 if WIDEST.search(instruction.group(2)) else 5
            needs[function] = max(needed, needs.get(function, 0))
    return needs


def kernel_set(function):
    """Newest set among the template arguments of a kernel or of a part of one; None for what is no kernel."""
    found = re.findall(r"\(orvik::core::eInstructionSet\)(\d)", function)
    return max(map(int, found)) if found else None


def main():
    build = pathlib.Path(sys.argv[1])
    faults, kernels = [], 0
    for path in sorted(build.rglob("*.cpp.o")):
        if "/tests/" in str(path) or "/examples/" in str(path) or "/benchmarks/" in str(path):
            continue
        suffix = path.name[:-len(".cpp.o")].rpartition("_")[2]
        allowed = SETS.get(suffix, 0) if "_" in path.name else 0
        for function, needed in vector_functions(path).items():
            named = kernel_set(function)
            is_kernel = named == allowed or (named is None and "(anonymous namespace)" in function
                                             and "_GLOBAL__" not in function)
            kernels += 1
            if needed > allowed or not is_kernel:
                faults.append(f"{path.name}: {function}")
    for library in build.glob("lib/lib*.so"):
        for function, needed in vector_functions(library).items():
            named = kernel_set(function)
            if named is not None and needed > named:
                faults.append(f"{library.name}: {function}")
            if named is None and "(anonymous namespace)" not in function:
                faults.append(f"{library.name}: {function}")
    for fault in faults:
        print("uses registers of a set outside its kernels:", fault)
    if kernels == 0:
        print("no kernel was found: nothing was checked")
    print(f"{kernels} functions use vector registers beyond plain code, {len(faults)} of them wrongly")
    return 1 if faults or kernels == 0 else 0


sys.exit(main())
