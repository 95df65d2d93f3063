#ifndef VISUALFEEDBACKJOB_H
#define VISUALFEEDBACKJOB_H

#include "qmljob.h"

/// Makes a motor show itself (wink).
class VisualFeedbackJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit VisualFeedbackJob(QObject* parent = nullptr);
    ~VisualFeedbackJob() override;

private:
    Q_DISABLE_COPY(VisualFeedbackJob)
};

#endif // VISUALFEEDBACKJOB_H
