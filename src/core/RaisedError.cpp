#include "core/RaisedError.h"

#include <utility>

RaisedError::RaisedError(long number, QString source, QString description)
    : lNumber(number)
    , strSource(std::move(source))
    , strDescription(std::move(description))
    , abWhat(strDescription.toUtf8())
{
}
