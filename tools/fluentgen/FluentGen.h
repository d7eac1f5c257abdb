// fluentgen: writes Fluent case, data and particle files for tests and benchmarks.
#pragma once
