// Internal header of the job classes, not API: may change without notice.
#ifndef SETLABELJOB_P_H
#define SETLABELJOB_P_H

#include "setlabeljob.h"

class SetLabelJobPrivate
{
public:
    QByteArray label;
};

#endif // SETLABELJOB_P_H
