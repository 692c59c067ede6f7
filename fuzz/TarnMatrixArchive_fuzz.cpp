// Fuzz target: any text restored through TarnStringArchive into a TarnMatrix, or into a holder
// whose first child is one of the packed forms; the restore must leave an empty handle table,
// pointers inside the graph and a shape that the text gave, and store, restore and store again
// must give the same text.
#include "ArchiveFuzzSupport.h"

#include <tarn/tarn.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace {

using fuzzcheck::check;

/// A serializable that contains one packed matrix, restored from its first child node: the only
/// way a packed matrix, whose serializable base is not public, goes through an archive.
class Holder : public TarnSerializable {
public:
    explicit Holder(std::unique_ptr<TarnSymmetricMatrix> contained) : packed(std::move(contained)) {}
    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Holder"; }
    std::string getClassName() const override { return "Holder"; }
    bool isModified() override { return modified; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        packed->serializeStore(archive.addChild());
    }
    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        if (!archive.getChildren().empty()) {
            packed->serializeRestore(archive.getChildren()[0]);
            restoredChild = true;
        }
    }
    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        packed->reconnectPointers();
    }
    void resetPointers() override {
        TarnSerializable::resetPointers();
        packed->resetPointers();
    }

    std::unique_ptr<TarnSymmetricMatrix> packed;
    bool restoredChild = false;
};

std::unique_ptr<TarnSymmetricMatrix> makePacked(unsigned form) {
    switch (form) {
    case 1:
        return std::make_unique<TarnSymmetricMatrix>(0);
    case 2:
        return std::make_unique<TarnSymmetricMatrix>(1);
    case 3:
        return std::make_unique<TarnUpperTriangularMatrix>();
    default:
        return std::make_unique<TarnLowerTriangularMatrix>();
    }
}

// The stored text with the addresses of the objects of one graph replaced by their roles, so that
// the texts of two graphs at different addresses compare.
std::string normalised(std::string text, const void *first, const void *second) {
    fuzzcheck::replaceAll(text, fuzzcheck::addressText(first), "<first>");
    if (second != nullptr) {
        fuzzcheck::replaceAll(text, fuzzcheck::addressText(second), "<second>");
    }
    return text;
}

void fuzzDense(const TarnString &text, const fuzzcheck::ShapeProbe &shape) {
    TarnMatrix matrix;
    check(fuzzcheck::restoreChecked(matrix, text) == 1);
    check(matrix.nRows() == (shape.rows > 0 ? shape.rows : 0));
    check(matrix.nCols() == (shape.cols > 0 ? shape.cols : 0));
    // The one object of the graph is the only place the parent link may lead.
    check(!matrix.hasParent() || &matrix.getParent() == &matrix);

    const std::string once = fuzzcheck::storedText(matrix);
    TarnMatrix again;
    check(fuzzcheck::restoreChecked(again, TarnString(once)) == 1);
    check(again.nRows() == matrix.nRows() && again.nCols() == matrix.nCols());
    check(normalised(once, &matrix, nullptr) == normalised(fuzzcheck::storedText(again), &again, nullptr));
}

// The parent text of a packed matrix: zeros, or the address of one of the graph's two objects.
void checkPackedParent(Holder &holder) {
    const std::string parent = holder.packed->get("parent");
    check(parent == fuzzcheck::addressText(nullptr) || parent == fuzzcheck::addressText(&holder) ||
          parent == fuzzcheck::addressText(holder.packed->getBasePointer()));
}

void fuzzPacked(const TarnString &text, const fuzzcheck::ShapeProbe &shape, unsigned form) {
    Holder holder(makePacked(form));
    const int steps = fuzzcheck::restoreChecked(holder, text);
    check(steps == (holder.restoredChild ? 2 : 1));
    const bool sized = holder.restoredChild && shape.childRows == shape.childCols;
    check(holder.packed->nRows() == (sized && shape.childRows > 0 ? shape.childRows : 0));
    check(holder.packed->nCols() == holder.packed->nRows());
    check(!holder.hasParent() || &holder.getParent() == &holder ||
          &holder.getParent() == holder.packed->getBasePointer());
    checkPackedParent(holder);

    const std::string once = fuzzcheck::storedText(holder);
    Holder again(makePacked(form));
    check(fuzzcheck::restoreChecked(again, TarnString(once)) == 2);
    check(again.packed->nRows() == holder.packed->nRows());
    check(normalised(once, &holder, holder.packed->getBasePointer()) ==
          normalised(fuzzcheck::storedText(again), &again, again.packed->getBasePointer()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    // The first byte picks the form: 0 the dense matrix at the root, 1 to 4 a holder of the
    // symmetric (upper, lower), upper and lower triangular forms. The rest is the text.
    if (size == 0) {
        return 0;
    }
    const unsigned form = data[0] % 5u;
    const TarnString text(std::string(reinterpret_cast<const char *>(data) + 1, size - 1));
    fuzzcheck::ShapeProbe shape;
    static_cast<void>(fuzzcheck::restoreChecked(shape, text));
    if (fuzzcheck::fitsMemory(shape.rows, shape.cols) &&
        fuzzcheck::fitsMemory(shape.childRows, shape.childCols)) {
        if (form == 0) {
            fuzzDense(text, shape);
        } else {
            fuzzPacked(text, shape, form);
        }
    }
    fuzzcheck::freshHandleTable();
    return 0;
}
