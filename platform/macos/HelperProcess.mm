#include "platform/HelperProcess.h"

namespace ns {

// The system itself disables a tap that does not answer, and passes the clicks on.
void startHelperProcess() {}

}  // namespace ns
