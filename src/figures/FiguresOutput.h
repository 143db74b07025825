#pragma once

#include "figures/LineOutput.h"
#include "sampler/SystemSampler.h"

#include <QObject>
#include <QString>

namespace corvane {

/// What is printed of the samples.
enum class FiguresForm {
    once,   ///< One object, of the first full second.
    stream, ///< One object a second.
    waybar, ///< One object a second for a bar's custom module.
};

/// Prints each sample of a sampler as one line of JSON. Emits `finished` when all is printed or
/// no more can be. Main thread.
class FiguresOutput : public QObject {
    Q_OBJECT

public:
    /// The sampler has taken its first sample and outlives this. `chip` is the chip's name.
    FiguresOutput(SystemSampler &sampler, FiguresForm form, const QString &chip, int descriptor,
                  QObject *parent = nullptr);

    /// As that of `LineOutput`.
    std::error_code error() const { return m_output.error(); }

signals:
    void finished();

private:
    void print();
    QByteArray line() const;

    const SystemSampler &m_sampler;
    const FiguresForm m_form;
    ProcessInterest m_interest; ///< Null for a form without processes.
    const QString m_chip;
    LineOutput m_output;
    bool m_hasSurvey = false; ///< One that was not printed yet.
};

} // namespace corvane
