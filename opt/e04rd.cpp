#include "e04rd_def.hpp"
#include "opt/sdpa.hpp"

namespace kor::e04rd {

namespace {

// Turns a reader failure into the routine's exit.
void raise_failure(frame::Record &rec, const opt::sdpa::Error &e, int64_t infile) {
    using F = opt::sdpa::Failure;
    switch (e.failure) {
    case F::not_readable: return rec.raise<Exit::infile_not_readable>(infile);
    case F::stream_empty: return rec.raise<Exit::stream_empty>();
    case F::premature_end: return rec.raise<Exit::premature_end>(std::string_view(e.part));
    case F::too_few_tokens:
        return rec.raise<Exit::too_few_tokens>(e.line, std::string_view(e.part), e.expected, e.found);
    case F::not_integer: return rec.raise<Exit::not_integer>(e.line, e.first, e.last);
    case F::not_real: return rec.raise<Exit::not_real>(e.line, e.first, e.last);
    case F::token_too_long: return rec.raise<Exit::token_too_long>(e.line, e.first);
    case F::too_few_variables: return rec.raise<Exit::too_few_variables>(e.line, e.value);
    case F::too_few_blocks: return rec.raise<Exit::too_few_blocks>(e.line, e.value);
    case F::block_size_zero: return rec.raise<Exit::block_size_zero>(e.line, e.first, e.last);
    case F::dimension_overflow: return rec.raise<Exit::dimension_overflow>(e.line);
    case F::matrix_number: return rec.raise<Exit::matrix_number>(e.line, e.value, e.limit);
    case F::block_number: return rec.raise<Exit::block_number>(e.line, e.value, e.limit);
    case F::row_outside: return rec.raise<Exit::row_outside>(e.line, e.value, e.limit, e.block);
    case F::column_outside: return rec.raise<Exit::column_outside>(e.line, e.value, e.limit, e.block);
    case F::lower_triangle: return rec.raise<Exit::lower_triangle>(e.line, e.row, e.col);
    case F::off_diagonal: return rec.raise<Exit::off_diagonal>(e.line, e.row, e.col, e.block);
    case F::repeated: return rec.raise<Exit::repeated>(e.line);
    case F::none: return;
    }
}

}  // namespace

void engine(frame::Record &rec, int64_t infile, int64_t maxnvar, int64_t maxnblk, int64_t maxnnz,
            int64_t &nvar, int64_t &nblk, int64_t *blksizea, double *cvec, int64_t *nnza,
            int64_t *irowa, int64_t *icola, double *a) {
    opt::sdpa::UnitLines lines(infile);
    opt::sdpa::Data data;
    if (const opt::sdpa::Error e = opt::sdpa::read(lines, data); e.failure != opt::sdpa::Failure::none)
        return raise_failure(rec, e, infile);

    const int64_t nnz = int64_t(data.entries.size());
    nvar = data.nvar;
    nblk = data.expanded_blocks();
    if (maxnvar < nvar || maxnblk < nblk || maxnnz < nnz) {
        // The entries of each matrix, whose sum a Fortran caller (who does
        // not see the message) needs for maxnnz.
        if (maxnvar >= nvar && nnza) {
            for (int64_t i = 0; i <= nvar; ++i) nnza[i] = 0;
            for (const opt::sdpa::Entry &e : data.entries) ++nnza[e.matrix];
        }
        return rec.raise<Exit::sizes_too_small>(nvar, maxnvar, nblk, maxnblk, nnz, maxnnz);
    }
    // Null arrays reach here only from C, where a size query may pass them.
    if (!blksizea) return rec.raise<Exit::array_null>(std::string_view("blksizea"));
    if (!cvec) return rec.raise<Exit::array_null>(std::string_view("cvec"));
    if (!nnza) return rec.raise<Exit::array_null>(std::string_view("nnza"));
    if (nnz > 0 && !irowa) return rec.raise<Exit::array_null>(std::string_view("irowa"));
    if (nnz > 0 && !icola) return rec.raise<Exit::array_null>(std::string_view("icola"));
    if (nnz > 0 && !a) return rec.raise<Exit::array_null>(std::string_view("a"));

    int64_t k = 0;
    for (int64_t size : data.block_sizes)
        if (size > 0)
            blksizea[k++] = size;
        else
            for (int64_t i = 0; i < -size; ++i) blksizea[k++] = 1;
    for (int64_t i = 0; i < nvar; ++i) cvec[i] = data.c[size_t(i)];
    for (int64_t i = 0; i <= nvar; ++i) nnza[i] = 0;
    for (int64_t i = 0; i < nnz; ++i) {
        const opt::sdpa::Entry &e = data.entries[size_t(i)];
        ++nnza[e.matrix];
        irowa[i] = e.row;
        icola[i] = e.col;
        a[i] = e.value;
    }
}

}  // namespace kor::e04rd
