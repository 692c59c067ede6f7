/// \file
/// The object root with class identity by name, the self-test interface, and getInt.
#pragma once

#include "tarn/TarnExport.h"

#include <string>

class TarnString;
template <class T>
class TarnVector;

/// The root of the library's object model. A class with a run-time identity answers by text what
/// its class is (`getClassName`) and whether it is of the class with a given name (`isa`). The
/// comparison is exact and never walks up to a base: an object answers true to exactly one name.
/// The root holds no data; copying and assigning it copy nothing. Any thread may ask an object
/// for its identity. Nothing here fails.
class TARN_API TarnObject {
public:
    /// Constructs the root; a copy copies nothing.
    ///@{
    TarnObject() = default;
    TarnObject(const TarnObject &) {}
    ///@}
    /// Destroys the object; the root's destructor does nothing.
    virtual ~TarnObject();

    /// Changes nothing and returns this object.
    TarnObject &operator=(const TarnObject &) { return *this; }

    /// Returns true when `name` is this object's class name, byte for byte.
    virtual bool isa(const std::string &name) const = 0;
    /// Returns a new string holding this object's class name.
    virtual std::string getClassName() const = 0;

    /// Makes a string of `name` (not null) and returns what the virtual `isa` answers.
    bool isa(const char *name) const;

    /// Returns true only when `other` is this very object: addresses are compared, nothing else.
    bool operator==(const TarnObject &other) const { return this == &other; }
};

/// The self-test interface of the matrix family: a second root that a class adds beside its
/// other bases. `test` appends one report line per check to the caller's vector and answers
/// whether every check passed; nothing prints the lines.
class TARN_API TarnTestable {
public:
    /// Constructs the interface; a copy copies nothing.
    ///@{
    TarnTestable() = default;
    TarnTestable(const TarnTestable &) {}
    ///@}
    /// Destroys the object; the interface's destructor does nothing.
    virtual ~TarnTestable();

    /// Changes nothing and returns this object.
    TarnTestable &operator=(const TarnTestable &) { return *this; }

    /// Runs the object's self-test, appending one line of report text per check to `results`.
    virtual bool test(TarnVector<TarnString> &results) = 0;
};

/// Returns 3. It has no state and no effect.
TARN_API int getInt();

namespace tarn {
/// Returns true when `name` equals the class literal `literal` exactly. The one comparison behind
/// every class's `isa`.
inline bool isClassName(const std::string &name, const char *literal) {
    return name == literal;
}
} // namespace tarn
