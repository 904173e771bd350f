#include "app/Licensing.h"

void Licensing::start() {}

void Licensing::check()
{
    emit restrictionsReported(false);
}
