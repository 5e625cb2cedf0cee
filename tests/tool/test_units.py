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
        for name in ("inch", "InvCelsius", "Inch "):
            result = self.run_tool("units", name)
            self.assertEqual((result.status, result.err), (3, f"qvt: error: no unit or dimension {name}\n"))
        self.assertEqual(self.done("units", "InvCelsius,").lines, ["0x43002  CoefficientOfThermalExpansion  InvCelsius,"])

    def test_InJson(self):
        self.assertEqual(self.done("units", "Inch", "-f", "json").json,
                         {"units": [{"unit": "Inch", "id": 0x2016, "dimension": "Length"}]})
