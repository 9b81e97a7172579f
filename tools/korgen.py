#!/usr/bin/env python3
"""Generates every layer of libkor's routines from their definition files.

A definition file (chapter/*.toml) declares routines: code, long name,
arguments, user-function kind and exits, and may declare exit sets
([[exit_set]]) that routines of any file start with (exit_sets = [...]).  From it this script writes only
shape, never behaviour:

  include/kor/<chapter>.h   C prototypes, long names, constants, enumerations
  include/kor/routines.h    includes every chapter header
  src/<code>_def.hpp        exit table and tags, the engine's declaration,
                            the layer prototypes
  src/<code>_shell.cpp      the exported interfaces and layer symbols, each a
                            few lines forwarding into frame/
  kor.f90                   module `kor`: interfaces of the Fortran-style entries
  exports.txt               every exported symbol
  docs/reference/<chapter>.md   (with --docs) the reference pages

Usage: korgen.py --out DIR [--docs DIR | --check-docs DIR] definition.toml...
Standard library only.
"""

import argparse
import os
import re
import sys
import tomllib

from genutil import write_if_changed

# "handle": an opaque handle that the library allocates (C: void *, or
# void ** with intent inout; Fortran: the 8-byte handle variable, of any
# type, by reference).
TYPES = ("real", "int", "enum", "char", "userfn", "handle")
INTENTS = ("in", "out", "inout")
RESULTS = {"usable": "usable", "fallback": "fallback value", "none": "not usable"}


class DefinitionError(Exception):
    pass


def declaration(ctype, name):
    """`ctype name`, with no blank after a pointer's star."""
    return f"{ctype}{'' if ctype.endswith('*') else ' '}{name}"


def c_string(text):
    """A C string literal holding `text`."""
    out = text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n")
    return '"' + out + '"'


class Arg:
    def __init__(self, entry, routine):
        self.name = entry["name"]
        self.type = entry["type"]
        self.intent = entry.get("intent", "in")
        self.dim = entry.get("dim")
        self.doc = entry.get("doc", "")
        self.c_type = entry.get("c_type")
        self.kind = entry.get("kind")
        self.nullable = entry.get("nullable", False)
        self.c_length = entry.get("c_length")
        self.letters = entry.get("letters")
        self.c_offset = entry.get("c_offset", 0)
        self.trace_dim = entry.get("trace_dim", self.dim)
        if self.type not in TYPES:
            raise DefinitionError(f"{routine}: argument {self.name}: unknown type {self.type}")
        if self.intent not in INTENTS:
            raise DefinitionError(f"{routine}: argument {self.name}: unknown intent {self.intent}")
        if self.letters and (self.type != "char" or not self.c_type):
            raise DefinitionError(f"{routine}: {self.name}: letters go with a char and a C enum")
        if self.type == "enum" and not self.c_type:
            raise DefinitionError(f"{routine}: enum argument {self.name} needs c_type")
        if self.type == "userfn" and not self.kind:
            raise DefinitionError(f"{routine}: user function {self.name} needs kind")
        if self.type == "char" and self.intent != "in" and not self.c_length:
            raise DefinitionError(f"{routine}: character output {self.name} needs c_length")
        if self.type == "handle" and (self.dim or self.intent == "out"):
            raise DefinitionError(f"{routine}: handle {self.name} is a scalar, in or inout")

    @property
    def is_letter(self):
        """A one-letter code: CHARACTER(1) in Fortran, an enumeration in C."""
        return bool(self.letters)

    @property
    def is_text_out(self):
        return self.type == "char" and self.intent != "in"

    @property
    def scalar_type(self):
        return {"real": "double", "int": "int64_t", "enum": "int64_t", "char": "char",
                "handle": "void *"}[self.type]

    @property
    def is_array(self):
        return self.dim is not None

    @property
    def is_pointer_in_c(self):
        if self.is_letter or (self.type == "handle" and self.intent == "in"):
            return False
        return self.is_array or self.intent != "in" or self.type in ("char", "userfn")

    # -- the internal layers (ft_, fv_, fn_): everything by reference
    def layer_signature(self):
        """The layers' parameters for this argument, as (C type, name) pairs."""
        if self.type == "userfn":
            return [("KorUserFn", self.name), ("KorAdapter", f"{self.name}_adapter"),
                    ("void *", "u1"), ("void *", "u2")]
        if self.type == "handle":
            return [("void **", self.name)]
        const = "const " if self.intent == "in" else ""
        return [(f"{const}{self.scalar_type} *", self.name)]

    # -- the C interface
    def c_param(self, kinds):
        if self.type == "userfn":
            return kinds[self.kind]["c_decl"].format(name=self.name)
        if self.is_text_out:
            return f"char *{self.name}, int64_t {self.c_length}"
        if self.type == "handle":
            return f"void *{self.name}" if self.intent == "in" else f"void **{self.name}"
        if self.is_letter:
            return f"{self.c_type} {self.name}"
        if self.type == "char":
            return f"const char *{self.name}"
        base = self.c_type if self.type == "enum" else self.scalar_type
        if self.is_array:
            const = "const " if self.intent == "in" else ""
            return f"{const}{base} {self.name}[]"
        if self.intent == "in":
            return f"{base} {self.name}"
        return f"{base} *{self.name}"

    # -- the Fortran-style interface: all by reference
    def fortran_c_param(self):
        if self.type == "userfn":
            return f"KorUserFn {self.name}"
        if self.type == "handle":
            return f"void **{self.name}"
        const = "const " if self.intent == "in" else ""
        return f"{const}{self.scalar_type} *{self.name}"

    def fortran_decl(self, kinds):
        if self.type == "userfn":
            return f"procedure({kinds[self.kind]['fortran_name']}) :: {self.name}"
        if self.type == "handle":
            # Assumed type: the caller's TYPE(C_PTR) or integer(kind=8) alike.
            return f"type(*), intent({self.intent}) :: {self.name}"
        ftype = {"real": "real(kind=8)", "int": "integer(kind=8)", "enum": "integer(kind=8)",
                 "char": "character(len=*)"}[self.type]
        dims = "(*)" if self.is_array else ""
        return f"{ftype}, intent({self.intent}) :: {self.name}{dims}"

    # -- the engine's view
    def engine_param(self, kinds):
        if self.type == "userfn":
            return f"frame::UserFunction<frame::{kinds[self.kind]['cpp']}> &{self.name}"
        if self.type == "handle":
            return f"void *{self.name}" if self.intent == "in" else f"void *&{self.name}"
        if self.is_text_out:
            return f"frame::TextOut {self.name}"
        if self.is_letter:
            return f"char {self.name}"
        if self.type == "char":
            return f"std::string_view {self.name}"
        if self.is_array:
            const = "const " if self.intent == "in" else ""
            return f"{const}{self.scalar_type} *{self.name}"
        if self.intent == "in":
            return f"{self.scalar_type} {self.name}"
        return f"{self.scalar_type} &{self.name}"

    def engine_arg(self):
        if self.type == "userfn":
            return f"{self.name}_call"
        if self.is_text_out:
            return f"frame::TextOut{{{self.name}, {self.name}_len}}"
        if self.is_letter:
            return f"({self.name}_len > 0 ? *{self.name} : ' ')"
        if self.type == "char":
            return f"std::string_view({self.name}, size_t({self.name}_len))"
        if self.is_array:
            return self.name
        return f"*{self.name}"


class Exit:
    def __init__(self, entry, routine, args):
        self.name = entry["name"]
        self.outcome = entry["outcome"]
        self.message = entry["message"]
        self.code = entry["code"]
        self.c = entry["c"]
        self.fortran = entry["fortran"]
        self.doc = entry.get("doc", "")
        # Reported at the Fortran-style interface only; the C interface
        # treats it as success (a size query, for example).
        self.c_success = entry.get("c_success", False)
        # What the caller may do with the outputs after this exit: "usable"
        # (computed, though the message says what to weigh), "fallback" (a
        # function's stated substitute value) or "none".  Warnings and
        # exits the C interface treats as success are usable unless the
        # definition says otherwise.
        usable = self.code.startswith("NW_") or self.c_success
        self.results = entry.get("results", "usable" if usable else "none")
        if self.results not in RESULTS:
            raise DefinitionError(f"{routine}: exit {self.name}: results {self.results}")
        self.values = []
        for v in entry.get("values", []):
            if ":" in v:
                name, vtype = v.split(":")
                if vtype not in ("real", "int", "text"):
                    raise DefinitionError(f"{routine}: exit {self.name}: value type {vtype}")
            else:
                name = v
                match = [a for a in args if a.name == name]
                if not match:
                    raise DefinitionError(f"{routine}: exit {self.name}: value {v} needs a type")
                vtype = {"int": "int", "enum": "int", "char": "text"}.get(match[0].type, "real")
            self.values.append((name, vtype))
        slots_c = self.c.count("%s")
        slots_f = sum(line.count("%s") for line in self.fortran)
        # A C text may leave out trailing values (a C caller passed an
        # enumeration where the Fortran caller passed the letter shown).
        if slots_c > len(self.values) or slots_f != len(self.values):
            raise DefinitionError(f"{routine}: exit {self.name}: {len(self.values)} values but "
                                  f"{slots_c} C and {slots_f} Fortran slots")
        if len(self.fortran) > 8:
            raise DefinitionError(f"{routine}: exit {self.name}: more than 8 Fortran lines")


class Routine:
    def __init__(self, entry, chapter, source):
        self.code = entry["code"]
        if not re.fullmatch(r"[a-z]\d\d[a-z]{2}", self.code):
            raise DefinitionError(f"{source}: bad routine code {self.code}")
        self.chapter = chapter
        self.source = source
        self.long = entry["long"]
        self.purpose = entry.get("purpose", "")
        self.description = entry.get("description", "").strip()
        self.fail = entry.get("fail", True)
        self.result = entry.get("result")
        self.c_result_type = entry.get("c_result_type")
        # A header that defines the engine inline: the shell includes it, so
        # that a cheap engine is folded into its interfaces with the frame.
        self.engine_header = entry.get("engine_header")
        self.args = [Arg(a, self.code) for a in entry.get("args", [])]
        self.exits = [Exit(e, self.code, self.args) for e in entry.get("exit", [])]
        if not self.fail and self.exits:
            raise DefinitionError(f"{self.code}: a routine without fail has no exits")
        messages = [e.message for e in self.exits]
        if len(set(messages)) != len(messages):
            raise DefinitionError(f"{self.code}: message numbers repeat")
        self.userfns = [a for a in self.args if a.type == "userfn"]
        if len(self.userfns) > 1:
            raise DefinitionError(f"{self.code}: one user function per routine")

    @property
    def callback(self):
        return self.userfns[0] if self.userfns else None

    @property
    def result_ctype(self):
        return {"real": "double", "int": "int64_t", None: "void"}[self.result]

    def count_of(self, a):
        """The integer argument that counts array a, when its dimension is
        one: with a count that is not positive the array is not used, and a
        C caller may pass NULL."""
        if not a.is_array:
            return None
        return next((b for b in self.args if b.name == a.dim and b.type == "int"
                     and not b.is_array and b.intent == "in"), None)

    @property
    def char_args(self):
        return [a for a in self.args if a.type == "char"]

    def symbols(self):
        """Every exported symbol of the routine."""
        return [f"{self.code}c", self.long, f"{self.code}f_"]

    # -- the internal layer signature, declared once for both its
    # declarations and the calls that pass it on
    def layer_signature(self):
        """The layers' parameters as (C type, name) pairs."""
        params = [("CallbackContext *", "ctx")]
        for a in self.args:
            params += a.layer_signature()
        if self.result:
            params.append((f"{self.result_ctype} *", "result"))
        if self.fail:
            params += [("char *", "errbuf"), ("int64_t *", "outcome")]
        params += [("int64_t", f"{a.name}_len") for a in self.char_args]
        if self.fail:
            params.append(("int64_t", "errbuf_len"))
        return params

    def layer_params(self):
        return [declaration(ctype, name) for ctype, name in self.layer_signature()]

    def layer_names(self):
        return [name for _, name in self.layer_signature()]

    def c_params(self, kinds):
        params = [a.c_param(kinds) for a in self.args]
        if self.callback:
            params.append("Kor_Comm *comm")
        if self.fail:
            params.append("KorError *fail")
        return params or ["void"]

    def c_call_names(self):
        names = []
        for a in self.args:
            names += [a.name, a.c_length] if a.is_text_out else [a.name]
        if self.callback:
            names.append("comm")
        if self.fail:
            names.append("fail")
        return names

    def fortran_params(self):
        params = [a.fortran_c_param() for a in self.args]
        if self.callback:
            params += ["int64_t *iuser", "double *ruser"]
        if self.fail:
            params.append("int64_t *ifail")
        params += [f"size_t {a.name}_len" for a in self.char_args]
        return params or ["void"]

    def fortran_arg_names(self):
        names = [a.name for a in self.args]
        if self.callback:
            names += ["iuser", "ruser"]
        if self.fail:
            names.append("ifail")
        return names

    def engine_params(self, kinds):
        params = ["frame::Record &kor_report"] if self.fail else []
        return params + [a.engine_param(kinds) for a in self.args]


def load(paths):
    routines, constants, enums = [], [], []
    chapters = {}
    loaded = []
    # Exit sets: exits that several routines share (a handle check, say),
    # written once under [[exit_set]] in any definition file and placed
    # before a routine's own exits, in the order its `exit_sets` names them.
    exit_sets = {}
    for path in paths:
        with open(path, "rb") as f:
            data = tomllib.load(f)
        loaded.append((path, data))
        for es in data.get("exit_set", []):
            if es["name"] in exit_sets:
                raise DefinitionError(f"{path}: exit set {es['name']} defined twice")
            exit_sets[es["name"]] = es.get("exit", [])
    for path, data in loaded:
        chapter = data["chapter"]
        chapters.setdefault(chapter, data.get("title", chapter))
        for c in data.get("constant", []):
            constants.append((chapter, c))
        for e in data.get("enum", []):
            enums.append((chapter, e))
        for r in data.get("routine", []):
            if "exit_sets" in r:
                shared = []
                for name in r["exit_sets"]:
                    if name not in exit_sets:
                        raise DefinitionError(f"{path}: {r.get('code')}: unknown exit set {name}")
                    shared += exit_sets[name]
                r = dict(r, exit=shared + r.get("exit", []))
            routines.append(Routine(r, chapter, path))
    codes = [r.code for r in routines]
    dup = {c for c in codes if codes.count(c) > 1}
    if dup:
        raise DefinitionError(f"routines defined twice: {sorted(dup)}")
    return chapters, routines, constants, enums


# ----------------------------------------------------------------------------
# C headers

def chapter_header(chapter, title, routines, constants, enums, kinds):
    guard = f"KOR_{chapter.upper()}_H"
    out = [f"/* {title}.  Generated from the routine definitions by tools/korgen.py:",
           "   do not edit. */",
           f"#ifndef {guard}", f"#define {guard}", "",
           '#include "kor/types.h"', "",
           "#ifdef __cplusplus", 'extern "C" {', "#endif", ""]
    for c in constants:
        out.append(f"/* {c.get('doc', '')} */")
        out.append(f"#define {c['name']} {c['value']}")
        out.append("")
    for e in enums:
        out.append(f"/* {e.get('doc', '')} */")
        values = ", ".join(f"{n} = {v}" for n, v in e["values"])
        out.append(f"typedef enum {{ {values} }} {e['name']};")
        out.append("")
    for r in routines:
        ret = r.c_result_type or r.result_ctype
        params = ", ".join(r.c_params(kinds))
        out.append(f"/* {r.code}: {r.purpose} */")
        out.append(f"{ret} {r.code}c({params});")
        out.append(f"{ret} {r.long}({params});")
        out.append("")
    out += ["#ifdef __cplusplus", "}", "#endif", "", "#endif", ""]
    return "\n".join(out)


def routines_header(chapters):
    out = ["/* Every chapter's routines.  Generated by tools/korgen.py: do not edit. */",
           "#ifndef KOR_ROUTINES_H", "#define KOR_ROUTINES_H", ""]
    out += [f'#include "kor/{c}.h"' for c in sorted(chapters)]
    out += ["", "#endif", ""]
    return "\n".join(out)


# ----------------------------------------------------------------------------
# The definition header and the shell of one routine

def def_header(r, kinds):
    ns = f"kor::{r.code}"
    out = [f"// {r.code}: exit table, engine declaration and layer prototypes.",
           f"// Generated from {os.path.basename(r.source)} by tools/korgen.py: do not edit.",
           "#pragma once", "",
           "#include <cstdint>", "#include <string_view>", "",
           '#include "frame/adapters.hpp"', '#include "frame/callbacks.hpp"',
           '#include "frame/record.hpp"', '#include "kor.h"', "",
           f"namespace {ns} {{", ""]
    if r.exits:
        out.append("inline constexpr frame::ExitInfo exits[] = {")
        for e in r.exits:
            lines = ", ".join(c_string(line) for line in e.fortran)
            out.append(f"    {{{e.outcome}, {e.message}, {e.code}, \"{e.code}\", {c_string(e.c)}, "
                       f"{len(e.values)}, {len(e.fortran)}, {{{lines}}}, {'true' if e.c_success else 'false'}, "
                       f"\"{e.name}\"}},")
        out.append("};")
        exits, count = "exits", len(r.exits)
    else:
        exits, count = "nullptr", 0
    out.append(f'inline constexpr frame::RoutineInfo info = {{"{r.code}c", "{r.code.upper()}F", '
               f"{exits}, {count}}};")
    out.append("")
    out.append("// The exits an engine may raise, with the types of the values they carry.")
    out.append("struct Exit {")
    for i, e in enumerate(r.exits):
        cpp_types = {"real": "double", "int": "int64_t", "text": "std::string_view"}
        types = "".join(", " + cpp_types[t] for _, t in e.values)
        out.append(f"    using {e.name} = frame::ExitTag<{i}{types}>;")
    out.append("};")
    out.append("")
    ret = r.result_ctype
    inline = "inline " if r.engine_header else ""
    out.append(f"{inline}{ret} engine({', '.join(r.engine_params(kinds))});")
    out.append("")
    out.append(f"}}  // namespace {ns}")
    out.append("")
    out.append('extern "C" {')
    params = ", ".join(r.layer_params())
    for layer in ("ft_", "fv_", "fn_"):
        out.append(f"void {r.code}{layer}({params});")
    if r.callback:
        hook = "KorUserFn fn, CallbackContext *ctx, void *call, void *u1, void *u2"
        chain = "KorAdapter adapter, " + hook
        out.append(f"void {r.code}c_f_helper({hook});")
        out.append(f"void {r.code}f_fh_({hook});")
        out.append(f"void {r.code}f_internal_fh_({chain});")
        out.append(f"int32_t {r.code}f_marshal_fh_({chain});")
        out.append(f"void {r.code}f_print_fh_({chain});")
    ret = r.result_ctype
    out.append(f"{ret} {r.code}f_({', '.join(r.fortran_params())});")
    out.append("}")
    out.append("")
    return "\n".join(out)


def trace_args(r):
    items = []
    for a in r.args:
        if a.type == "userfn":
            continue
        if a.type == "handle":
            items.append(f'frame::trace_address("{a.name}", *{a.name})')
        elif a.type == "char":
            items.append(f'frame::trace_text("{a.name}", {a.name}, {a.name}_len)')
        elif a.is_array:
            dim = a.trace_dim
            if any(b.name == dim for b in r.args):
                dim = f"*{dim}"
            items.append(f'frame::trace_array("{a.name}", {a.name}, {dim})')
        else:
            items.append(f'frame::trace_value("{a.name}", {a.name})')
    if r.callback:
        items += ['frame::trace_address("iuser", u1)', 'frame::trace_address("ruser", u2)']
    if r.result:
        items.append('frame::trace_value("result", result)')
    if r.fail:
        items += ['frame::trace_text("errbuf", errbuf, errbuf_len)',
                  'frame::trace_value("ifail", outcome)']
    return items


def shell(r, kinds):
    code = r.code
    params = ", ".join(r.layer_params())
    names = ", ".join(r.layer_names())
    out = [f"// {code}: the exported interfaces and the layers beneath them.",
           f"// Generated from {os.path.basename(r.source)} by tools/korgen.py: do not edit.",
           "#include <cstring>", "",
           '#include "frame/interface.hpp"', '#include "frame/trace.hpp"',
           f'#include "{code}_def.hpp"'] + ([f'#include "{r.engine_header}"'] if r.engine_header else []) + ["",
           "#define KOR_EXPORT __attribute__((visibility(\"default\")))",
           "// The layers below an interface are folded into it: they stay as symbols",
           "// of their own, but a call does not pay for each hop.",
           "#define KOR_FLATTEN __attribute__((flatten))", "",
           "using namespace kor;", f"namespace def = kor::{code};", "",
           'extern "C" {', ""]

    # engine layer
    engine_args = ", ".join((["kor_report"] if r.fail else []) + [a.engine_arg() for a in r.args])
    call = f"def::engine({engine_args})"
    if r.result:
        call = f"*result = {call}"
    body = []
    if r.callback:
        cb = r.callback
        kind = kinds[cb.kind]["cpp"]
        body.append(f"frame::UserFunction<frame::{kind}> {cb.name}_call(ctx, {cb.name}, "
                    f"{cb.name}_adapter, u1, u2, {code}f_print_fh_);")
    body.append(call + ";")
    out.append(f"void {code}fn_({params}) {{")
    if r.fail:
        out.append("    frame::run_engine(def::info, ctx, errbuf, errbuf_len, outcome, "
                   "[&](frame::Record &kor_report) {")
        out += ["        " + b for b in body]
        out.append("    });")
    else:
        out.append("    (void)ctx;")
        out += ["    " + b for b in body]
    out.append("}")
    out.append("")

    # trace and entry layers: the traced call is kept out of line, so that
    # the interfaces, which inline everything else, stay small
    out.append("}  // extern \"C\"")
    out.append(f"[[gnu::noinline, gnu::cold]] static void {code}_traced({params}) {{")
    out.append(f'    frame::traced("{code}fv", [&] {{ {code}fn_({names}); }},')
    out.append("                  {" + ",\n                   ".join(trace_args(r)) + "});")
    out.append("}")
    out.append('extern "C" {')
    out.append(f"void {code}fv_({params}) {{")
    out.append(f"    if (frame::trace_on()) [[unlikely]] return {code}_traced({names});")
    out.append(f"    {code}fn_({names});")
    out.append("}")
    out.append("")
    out.append(f"void {code}ft_({params}) {{ {code}fv_({names}); }}")
    out.append("")

    # user-function adapters
    if r.callback:
        cb = r.callback
        kind = kinds[cb.kind]["cpp"]
        hook = "KorUserFn fn, CallbackContext *ctx, void *call, void *u1, void *u2"
        chain = "KorAdapter adapter, " + hook
        out += [
            f"void {code}c_f_helper({hook}) {{ frame::{kind}::call_c(fn, ctx, call, u1, u2); }}",
            f"void {code}f_fh_({hook}) {{ frame::{kind}::call_fortran(fn, ctx, call, u1, u2); }}",
            f"void {code}f_internal_fh_({chain}) {{",
            "    frame::internal_fh(adapter, fn, ctx, call, u1, u2);", "}",
            f"int32_t {code}f_marshal_fh_({chain}) {{",
            f"    return frame::marshal_fh({code}f_internal_fh_, adapter, fn, ctx, call, u1, u2);", "}",
            f"void {code}f_print_fh_({chain}) {{",
            f'    frame::print_fh<frame::{kind}>("{code}fv:{cb.name}", {code}f_marshal_fh_, adapter, fn, '
            "ctx, call, u1, u2);", "}", ""]

    # the C interface
    ret = r.c_result_type or r.result_ctype
    c_params = ", ".join(r.c_params(kinds))
    prelude, entry = [], ["ctx"]
    for a in r.args:
        if a.type == "userfn":
            entry += [f"reinterpret_cast<KorUserFn>({a.name})", f"{code}c_f_helper", "comm", "nullptr"]
        elif a.type == "enum" and not a.is_array and a.intent == "in":
            offset = f" - {a.c_offset}" if a.c_offset else ""
            prelude.append(f"const int64_t {a.name}_value = frame::enum_value({a.name}){offset};")
            entry.append(f"&{a.name}_value")
        elif a.is_letter:
            # The enumeration's values stand for the letters in order.
            prelude.append(f"const int64_t {a.name}_code = frame::enum_value({a.name});")
            prelude.append(f'const char {a.name}_letter = {a.name}_code >= 0 && {a.name}_code < {len(a.letters)} ? '
                           f'"{a.letters}"[{a.name}_code] : \'?\';')
            prelude.append(f"const int64_t {a.name}_len = 1;")
            entry.append(f"&{a.name}_letter")
        elif a.is_text_out:
            # Room for the terminating NUL that C callers expect.
            prelude.append(f"const int64_t {a.name}_len = {a.c_length} > 0 ? {a.c_length} - 1 : 0;")
            entry.append(a.name)
        elif a.type == "char":
            prelude.append(f"const int64_t {a.name}_len = int64_t(std::strlen({a.name}));")
            entry.append(a.name)
        elif a.is_pointer_in_c:
            entry.append(a.name)
        else:
            entry.append(f"&{a.name}")
    if r.result:
        entry.append("&result")
    if r.fail:
        entry += ["errbuf", "outcome"]
    entry += [f"{a.name}_len" for a in r.char_args]
    if r.fail:
        entry.append("frame::record_length")
    entry_call = f"{code}ft_({', '.join(entry)});"
    entry_call += "".join(f" if ({a.c_length} > 0) frame::terminate_text({a.name}, {a.name}_len);"
                          for a in r.args if a.is_text_out)
    checked = [a for a in r.args if a.is_pointer_in_c and not a.nullable]

    def pointer_entry(a):
        count = r.count_of(a)
        used = f", {count.name} > 0" if count else ""
        return f'frame::NamedPointer{{"{a.name}", reinterpret_cast<const void *>({a.name}){used}}}'

    out.append(f"KOR_EXPORT KOR_FLATTEN {ret} {code}c({c_params}) {{")
    if r.result:
        out.append(f"    {r.result_ctype} result = 0;")
    if r.fail:
        pointers = "".join(", " + pointer_entry(a) for a in checked)
        out.append("    frame::c_interface(def::info, fail, "
                   "[&](CallbackContext *ctx, char *errbuf, int64_t *outcome) {")
        out += ["        " + p for p in prelude]
        out.append("        " + entry_call)
        out.append(f"    }}{pointers});")
    else:
        if checked:
            test = " || ".join(f"!{a.name}" for a in checked)
            out.append(f"    if ({test}) return{' result' if r.result else ''};")
        out.append("    frame::plain_interface([&](CallbackContext *ctx) {")
        out += ["        " + p for p in prelude]
        out.append("        " + entry_call)
        out.append("    });")
    if r.result:
        out.append(f"    return {'(' + ret + ')' if r.c_result_type else ''}result;")
    out.append("}")
    call_names = ", ".join(r.c_call_names())
    ret_kw = "return " if ret != "void" else ""
    out.append(f"KOR_EXPORT {ret} {r.long}({c_params}) {{ {ret_kw}{code}c({call_names}); }}")
    out.append("")

    # the Fortran-style interface
    f_params = ", ".join(r.fortran_params())
    entry = ["ctx"]
    for a in r.args:
        if a.type == "userfn":
            entry += [a.name, f"{code}f_fh_", "iuser", "ruser"]
        else:
            entry.append(a.name)
    if r.result:
        entry.append("&result")
    if r.fail:
        entry += ["errbuf", "outcome"]
    entry += [f"int64_t({a.name}_len)" for a in r.char_args]
    if r.fail:
        entry.append("frame::record_length")
    entry_call = f"{code}ft_({', '.join(entry)});"
    out.append(f"KOR_EXPORT KOR_FLATTEN {r.result_ctype} {code}f_({f_params}) {{")
    if r.result:
        out.append(f"    {r.result_ctype} result = 0;")
    if r.fail:
        out.append("    frame::fortran_interface(def::info, ifail, "
                   "[&](CallbackContext *ctx, char *errbuf, int64_t *outcome) {")
    else:
        out.append("    frame::plain_interface([&](CallbackContext *ctx) {")
    out.append("        " + entry_call)
    out.append("    });")
    if r.result:
        out.append("    return result;")
    out.append("}")
    out.append("")
    out.append("}  // extern \"C\"")
    out.append("")
    return "\n".join(out)


def routine_index(routines):
    """A test-only header listing every routine's exit table, so that one
    test can walk all exits of all routines."""
    out = ["// Every routine's exit table.  Generated by tools/korgen.py: do not edit.",
           "#pragma once", ""]
    out += [f'#include "{r.code}_def.hpp"' for r in routines]
    out += ["", "namespace kor::index {", "",
            "inline const frame::RoutineInfo *const routines[] = {"]
    out += [f"    &kor::{r.code}::info," for r in routines if r.fail]
    out += ["};", "", "}  // namespace kor::index", ""]
    return "\n".join(out)


# ----------------------------------------------------------------------------
# Fortran module

def fortran_module(routines, constants, kinds):
    out = ["! Interfaces of libkor's Fortran-style entry points.",
           "! Generated from the routine definitions by tools/korgen.py: do not edit.",
           "module kor", "  implicit none", ""]
    for _, c in constants:
        if re.fullmatch(r"-?\d+", str(c["value"])):
            out.append(f"  integer(kind=8), parameter :: {c['name'].lower()} = {c['value']}")
    used = sorted({r.callback.kind for r in routines if r.callback})
    if used:
        out += ["", "  abstract interface"]
        for k in used:
            out += ["    " + line for line in kinds[k]["fortran_abstract"].strip().splitlines()]
        out.append("  end interface")
    out += ["", "  interface"]
    for r in routines:
        name = f"{r.code}f"
        arglist = ", ".join(r.fortran_arg_names())
        if r.result:
            out.append(f"    function {name}({arglist})")
        else:
            out.append(f"    subroutine {name}({arglist})")
        if r.callback:
            out.append(f"      import :: {kinds[r.callback.kind]['fortran_name']}")
        if r.result:
            rtype = "real(kind=8)" if r.result == "real" else "integer(kind=8)"
            out.append(f"      {rtype} :: {name}")
        for a in r.args:
            out.append("      " + a.fortran_decl(kinds))
        if r.callback:
            out.append("      integer(kind=8), intent(inout) :: iuser(*)")
            out.append("      real(kind=8), intent(inout) :: ruser(*)")
        if r.fail:
            out.append("      integer(kind=8), intent(inout) :: ifail")
        out.append(f"    end {'function' if r.result else 'subroutine'} {name}")
    out += ["  end interface", "", "end module kor", ""]
    return "\n".join(out)


# ----------------------------------------------------------------------------
# Reference documentation

def md_cell(text):
    """Text for a table cell: a bare | would end the cell."""
    return text.replace("|", "\\|")


def md_code(text):
    return "`" + text.replace("\n", "\\n") + "`"


def reference_page(chapter, title, routines, kinds, constants=(), enums=()):
    out = [f"# {chapter}: {title}", "",
           "This page is generated from the routine definitions by `tools/korgen.py`;",
           "edit the definition files, not this page.", ""]
    if constants or enums:
        out += ["## Constants and enumerations", "",
                "Declared in the chapter's header (included by `kor.h`); the Fortran-style",
                "interface takes the integer values its arguments' descriptions give.", ""]
        for c in constants:
            out.append(f"- `{c['name']}` = {c['value']}: {c.get('doc', '')}")
        if constants:
            out.append("")
        for e in enums:
            out += [f"`{e['name']}`: {e.get('doc', '')}", "", "| Enumerator | C value |", "|---|---|"]
            out += [f"| `{n}` | {v} |" for n, v in e["values"]]
            out.append("")
    for r in routines:
        out += [f"## {r.code}: {r.purpose}", ""]
        if r.description:
            out += [r.description, ""]
        ret = r.c_result_type or r.result_ctype
        c_params = (",\n" + " " * (len(ret) + len(r.code) + 3)).join(r.c_params(kinds))
        out += ["C interface (also under the long name "
                f"`{r.long}`):", "", "```c", f"{ret} {r.code}c({c_params});", "```", ""]
        fargs = ", ".join(r.fortran_arg_names())
        prefix = "result = " if r.result else "call "
        out += ["Fortran-style interface (module `kor`):", "", "```fortran",
                f"{prefix}{r.code}f({fargs})", "```", ""]
        if r.args:
            out += ["| Argument | Type | Intent | Meaning |", "|---|---|---|---|"]
            for a in r.args:
                if a.type == "userfn":
                    t = f"user function ({a.kind})"
                elif a.type == "enum":
                    t = f"{a.c_type} (C), integer (Fortran)"
                else:
                    t = {"real": "real", "int": "integer", "char": "character",
                         "handle": "handle"}[a.type]
                doc = a.doc
                if a.is_array:
                    t += f" array ({a.dim})"
                    if r.count_of(a):
                        doc += f" May be NULL in C when `{a.dim}` ≤ 0."
                out.append(f"| `{a.name}` | {t} | {a.intent} | {md_cell(doc)} |")
            out.append("")
        if r.callback:
            out += [f"User function `{r.callback.name}`: {kinds[r.callback.kind]['doc']}", ""]
        if r.exits:
            out += ["| Outcome | Message | C code | Results | C message | Fortran lines |",
                    "|---|---|---|---|---|---|"]
            for e in r.exits:
                lines = "<br>".join(md_code("** " + line) for line in e.fortran)
                out.append(f"| {e.outcome} | {e.message} | `{e.code}` | {RESULTS[e.results]} | "
                           f"{md_code(e.c)} | {lines} |")
            out.append("")
            docs = [e for e in r.exits if e.doc]
            for e in docs:
                out.append(f"- `{e.code}` (message {e.message}): {e.doc}")
            if docs:
                out.append("")
    return "\n".join(out)


# ----------------------------------------------------------------------------

def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", help="directory for generated sources")
    parser.add_argument("--kinds", required=True, help="callback kinds (frame/callbacks.toml)")
    parser.add_argument("--docs", help="write the reference pages into this directory")
    parser.add_argument("--check-docs", help="fail unless the reference pages here are current")
    parser.add_argument("definitions", nargs="+")
    opts = parser.parse_args()

    try:
        with open(opts.kinds, "rb") as f:
            kinds = tomllib.load(f)
        chapters, routines, constants, enums = load(sorted(opts.definitions))
        for r in routines:
            if r.callback and r.callback.kind not in kinds:
                raise DefinitionError(f"{r.code}: unknown user-function kind {r.callback.kind}")
    except (DefinitionError, KeyError, tomllib.TOMLDecodeError) as err:
        print(f"korgen: {err}", file=sys.stderr)
        return 1

    def of_chapter(items, chapter):
        return [x for c, x in items if c == chapter]

    pages = {ch: reference_page(ch, title, [r for r in routines if r.chapter == ch], kinds,
                                of_chapter(constants, ch), of_chapter(enums, ch))
             for ch, title in chapters.items()}

    if opts.check_docs:
        stale = []
        for ch, text in pages.items():
            path = os.path.join(opts.check_docs, f"{ch}.md")
            if not os.path.exists(path) or open(path).read() != text:
                stale.append(path)
        if stale:
            print("korgen: reference pages out of date (run the docs target): " + ", ".join(stale),
                  file=sys.stderr)
            return 1
        print(f"korgen: {len(pages)} reference pages current")
        return 0

    if opts.docs:
        for ch, text in pages.items():
            write_if_changed(os.path.join(opts.docs, f"{ch}.md"), text)

    if opts.out:
        inc = os.path.join(opts.out, "include", "kor")
        src = os.path.join(opts.out, "src")
        for ch, title in chapters.items():
            rs = [r for r in routines if r.chapter == ch]
            write_if_changed(os.path.join(inc, f"{ch}.h"),
                             chapter_header(ch, title, rs, of_chapter(constants, ch),
                                            of_chapter(enums, ch), kinds))
        write_if_changed(os.path.join(inc, "routines.h"), routines_header(chapters))
        for r in routines:
            write_if_changed(os.path.join(src, f"{r.code}_def.hpp"), def_header(r, kinds))
            write_if_changed(os.path.join(src, f"{r.code}_shell.cpp"), shell(r, kinds))
        write_if_changed(os.path.join(opts.out, "kor.f90"), fortran_module(routines, constants, kinds))
        symbols = sorted(s for r in routines for s in r.symbols())
        write_if_changed(os.path.join(opts.out, "exports.txt"), "\n".join(symbols) + "\n")
        write_if_changed(os.path.join(src, "routine_index.hpp"), routine_index(routines))
        write_if_changed(os.path.join(opts.out, "shells.txt"),
                         "\n".join(os.path.join(src, f"{r.code}_shell.cpp") for r in routines) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
