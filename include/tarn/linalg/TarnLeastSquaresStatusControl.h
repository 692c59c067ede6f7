/// \file
/// The record that a least-squares iteration and its caller share: limits, progress, outcome.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"

#include <cstdint>
#include <string>

/// A plain record shared by a least-squares iteration and its caller: limits and options going
/// in (maxIters, the rejection values), progress coming out (iter, rejectionCount, DOF, RMS), an
/// abort request, and four independent outcome flags that only ever go from false to true (only
/// assignment from another record clears them). No accessor validates or clamps. Copies carry
/// every field. No lock: callers that share one between threads order their own accesses.
class TARN_API TarnLeastSquaresStatusControl : public TarnObject {
public:
    /// Sets the defaults: maxIters 100, rejectionMultiplier 3.0, rejectionLimit 100.0, every
    /// other number 0 and every flag false.
    TarnLeastSquaresStatusControl() = default;
    /// Copies every field of `other`, the flags and the abort request included.
    TarnLeastSquaresStatusControl(const TarnLeastSquaresStatusControl &other) = default;
    /// Copies every field of `other`, the flags and the abort request included.
    TarnLeastSquaresStatusControl &operator=(const TarnLeastSquaresStatusControl &other) = default;
    /// Releases nothing: the record holds numbers and flags only.
    ~TarnLeastSquaresStatusControl() override;

    using TarnObject::isa;
    /// Returns true exactly for "TarnLeastSquaresStatusControl".
    bool isa(const std::string &name) const override;
    /// Returns "TarnLeastSquaresStatusControl".
    std::string getClassName() const override;

    /// Returns the current iteration number.
    int getIter() { return iter; }
    /// Sets the current iteration number.
    void setIter(int value) { iter = value; }
    /// Returns the count of rejected items.
    int getRejectionCount() { return rejectionCount; }
    /// Sets the count of rejected items.
    void setRejectionCount(int value) { rejectionCount = value; }
    /// Returns the degrees of freedom.
    int getDOF() { return DOF; }
    /// Sets the degrees of freedom.
    void setDOF(int value) { DOF = value; }
    /// Returns the root mean square of the fit.
    double getRMS() { return RMS; }
    /// Sets the root mean square of the fit.
    void setRMS(double value) { RMS = value; }
    /// Returns whether outliers are to be rejected.
    bool getDoReject() { return doReject; }
    /// Sets whether outliers are to be rejected.
    void setDoReject(bool value) { doReject = value; }
    /// Returns the factor of the rejection test.
    double getRejectionMultiplier() { return rejectionMultiplier; }
    /// Sets the factor of the rejection test.
    void setRejectionMultiplier(double value) { rejectionMultiplier = value; }
    /// Returns the additive term of the rejection test.
    double getRejectionAdd() { return rejectionAdd; }
    /// Sets the additive term of the rejection test.
    void setRejectionAdd(double value) { rejectionAdd = value; }
    /// Returns the limit of the rejection test.
    double getRejectionLimit() { return rejectionLimit; }
    /// Sets the limit of the rejection test.
    void setRejectionLimit(double value) { rejectionLimit = value; }
    /// Returns the iteration limit.
    int getMaxIters() { return maxIters; }
    /// Sets the iteration limit; zero and negative values are stored as given.
    void setMaxIters(int value) { maxIters = value; }
    /// Returns the abort request.
    bool getAbort() { return abort; }
    /// Sets or clears the abort request; the outcome flags do not change.
    void setAbort(bool value) { abort = value; }

    /// Marks the iteration as finished.
    void setStatusDone() { statusDone = true; }
    /// Marks the iteration as stopped on request.
    void setStatusAborted() { statusAborted = true; }
    /// Marks the iteration as converged.
    void setStatusConverged() { statusConverged = true; }
    /// Returns whether the iteration converged.
    bool getStatusConverged() { return statusConverged; }
    /// Marks the iteration as stopped at the iteration limit.
    void setStatusMaxIterations() { statusMaxIterations = true; }

private:
    std::int32_t iter = 0;
    std::int32_t rejectionCount = 0;
    std::int32_t DOF = 0;
    double RMS = 0.0;
    bool statusDone = false;
    bool statusAborted = false;
    bool statusConverged = false;
    bool statusMaxIterations = false;
    bool doReject = false;
    double rejectionMultiplier = 3.0;
    double rejectionAdd = 0.0;
    std::int32_t maxIters = 100;
    bool abort = false;
    double rejectionLimit = 100.0;
};
