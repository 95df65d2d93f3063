#include "visualfeedbackjob.h"

VisualFeedbackJob::VisualFeedbackJob(QObject* parent)
    : QmlJob(parent)
{
}

VisualFeedbackJob::~VisualFeedbackJob() = default;
