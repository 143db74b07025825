#include "figures/FiguresOutput.h"

#include "figures/FiguresJSON.h"
#include "sampler/SystemSampler.h"
#include "threads/MainThread.h"

namespace corvane {

FiguresOutput::FiguresOutput(SystemSampler &sampler, FiguresForm form, const QString &chip,
                             int descriptor, QObject *parent)
    : QObject(parent),
      m_sampler(sampler),
      m_form(form),
      m_chip(chip),
      m_output(descriptor)
{
    assertMainThread();
    connect(&sampler, &SystemSampler::aiWorkloadsChanged, this, [this] { m_hasSurvey = true; });
    if (form != FiguresForm::waybar)
        m_interest = sampler.lookAtProcesses();
    connect(&sampler, &SystemSampler::currentChanged, this, &FiguresOutput::print);
    connect(&m_output, &LineOutput::closed, this, &FiguresOutput::finished);
    if (form == FiguresForm::once)
        connect(&m_output, &LineOutput::idle, this, &FiguresOutput::finished);
}

void FiguresOutput::print()
{
    m_output.send(line());
    m_hasSurvey = false;
}

QByteArray FiguresOutput::line() const
{
    if (m_form == FiguresForm::waybar)
        return inOneLine(barObject(m_sampler.current()));
    std::optional<SurveyFigures> survey;
    if (m_hasSurvey)
        survey = {m_sampler.processes(), m_sampler.aiWorkloads()};
    return inOneLine(figuresObject(figuresOf(m_sampler.current(), m_chip), survey));
}

} // namespace corvane
