import math

from tool import ToolTest


class Units(ToolTest):
    def test_AllAreListed(self):
        lines = self.done("units").lines
        self.assertEqual(len(lines), 780)
        self.assertEqual(lines[0].split(), ["0x1001", "Dimensionless", "Unitless"])

    def test_OfADimension(self):
        self.assertEqual(self.done("units", "Temperature").out, """\
0x2a001  Temperature  DegreeKelvin
0x2a002  Temperature  DegreeCelsius
0x2a003  Temperature  DegreeFahrenheit
0x2a004  Temperature  Rankine
""")

    def test_TheDimensionOfAUnit(self):
        self.assertEqual(self.done("units", "Inch").out, "0x2016  Length  Inch\n")

    def test_TheSecondNameOfAnId(self):
        self.assertEqual(self.done("units", "Nit").out, "0x37001  Luminance  Nit\n")

    def test_NamesAreExact(self):
        for name, meant in (("inch", "Inch"), ("InvCelsius", "InvCelsius,"), ("Inch ", "Inch")):
            result = self.run_tool("units", name)
            self.assertEqual((result.status, result.err),
                             (3, f"qvt: error: no unit or dimension {name}; did you mean {meant}?\n"))
        self.assertEqual(self.done("units", "InvCelsius,").lines, ["0x43002  CoefficientOfThermalExpansion  InvCelsius,"])

    def test_InJson(self):
        self.assertEqual(self.done("units", "Inch", "-f", "json").json,
                         {"units": [{"unit": "Inch", "id": 0x2016, "dimension": "Length", "factor": 0.0254,
                                     "shift": 0}]})


class Scales(ToolTest):
    def setUp(self):
        super().setUp()
        rows = self.done("units", "-f", "json").json["units"]
        self.scales = {row["unit"].split(",")[0]: (row["factor"], row["shift"]) for row in rows}

    def test_AreThoseThatAreDefined(self):
        pound, foot, gravity = 0.45359237, 0.3048, 9.80665
        for unit, factor in {
                "KiloMeter": 1000, "Mile": 1609.344, "Millimeter": None, "SquareFoot": foot ** 2, "Acre": 4046.8564224,
                "CubicInch": 0.0254 ** 3, "AcreFoot": 4046.8564224 * foot, "Gallon": 231 * 0.0254 ** 3, "Gram": 0.001,
                "Dekaliter": 0.01, "MilePerHour": 1609.344 / 3600, "KilometerPerHour": 1 / 3.6, "Kilowatt": 1000,
                "KilowattHour": 3.6e6, "PoundPerSquareInch": pound * gravity / 0.0254 ** 2, "Torr": 101325 / 760,
                "PoundPerCubicFoot": pound / foot ** 3, "FootPound_Torque": foot * pound * gravity, "Bar": 1e5,
                "LiterPerSecond": 0.001, "GallonPerMinute": 231 * 0.0254 ** 3 / 60, "Degree": math.pi / 180,
                "Kilopound": 1000 * pound * gravity, "MeterPerSecondSquared": 1, "Poise": 0.1, "InvFahrenheit": 1.8,
                "RevolutionPerMinute": 1 / 60, "Byte": 8, "Mebibyte": 8 << 20, "KilonewtonMeterPerDegree": 180000 / math.pi,
                "MilliampereHour": 3.6, "Megohm": 1e6, "Horsepower_Metric": 75 * gravity, "WattPerSquareFoot": foot ** -2,
        }.items():
            with self.subTest(unit):
                if factor is None:
                    self.assertNotIn(unit, self.scales)
                else:
                    self.assertAlmostEqual(self.scales[unit][0] / factor, 1, delta=1e-12)
                    self.assertEqual(self.scales[unit][1], 0)

    def test_OfTemperaturesHaveTheirZeros(self):
        celsius, fahrenheit = self.scales["DegreeCelsius"], self.scales["DegreeFahrenheit"]
        self.assertEqual(celsius, (1, 273.15))
        self.assertAlmostEqual(212 * fahrenheit[0] + fahrenheit[1], 373.15, delta=1e-9)
        self.assertAlmostEqual(-40 * fahrenheit[0] + fahrenheit[1], 233.15, delta=1e-9)

    def test_AreNotKnownWhereTheNameStandsForSeveral(self):
        for unit in ("Month", "Year", "Calorie", "TonForce", "Bar_Gauge", "Cable", "PartPerMillion", "Hogshead_US"):
            self.assertEqual(self.scales[unit], (None, None), unit)

    def test_OfWhatIsMultipliedHaveTheFactorsOfTheirParts(self):
        s = {unit: scale[0] for unit, scale in self.scales.items()}
        for unit, factor in {"NewtonPerSquareMillimeter": s["Newton"] / s["MilliMeter"] ** 2,
                             "KipFootPerDegreePerFoot": s["Kip"] * s["Foot"] / s["Degree"] / s["Foot"],
                             "CubicYardPerMinute": s["Yard"] ** 3 / s["Minute"],
                             "SquareMileNautical_UK": s["Mile_Nautical_UK"] ** 2,
                             "IntlBritishThermalUnitPerHour": s["BritishThermalUnit_INT"] / s["Hour"]}.items():
            self.assertAlmostEqual(s[unit] / factor, 1, delta=1e-12, msg=unit)
