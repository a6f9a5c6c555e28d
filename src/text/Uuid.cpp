#include "text/Uuid.h"

#include <QUuid>

namespace quarry {

QString UUIDString()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

} // namespace quarry
