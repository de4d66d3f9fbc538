-- Unique indexes that a database may have besides, on PostgreSQL.
--
-- Each stands on what a duplicate check counts by before a row is inserted, and on no
-- more rows than that check guards: a row that one client alone may add must not be
-- refused.

-- Of two that make them at the same moment, one waits here and finds them made.
LOCK TABLE provider, enroll, neworder, distrib, dosesadm IN SHARE ROW EXCLUSIVE MODE;

-- Depots and others may share a PIN with a provider.
CREATE UNIQUE INDEX IF NOT EXISTS provider_unique_pin ON provider (
  (CAST(ltrim(rtrim(pin)) AS bpchar))
) WHERE sector BETWEEN 10 AND 29;

-- The check finds no PIN that is stored with blanks in front.
CREATE UNIQUE INDEX IF NOT EXISTS enroll_unique_pin ON enroll (
  (CAST(ltrim(rtrim(pin)) AS bpchar))
) WHERE pin = ltrim(pin);

-- Orders that come from a depot's shipment have no ordpin, and nothing checks them.
CREATE UNIQUE INDEX IF NOT EXISTS neworder_unique_open_order ON neworder (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  orddate,
  (CAST(ltrim(rtrim(vaccine)) AS bpchar)),
  (CAST(ltrim(rtrim(fcode1)) AS bpchar))
) WHERE seekid = 0 AND ordpin IS NOT NULL;

-- Distributions themselves, which are action 1, are written by others.
CREATE UNIQUE INDEX IF NOT EXISTS distrib_unique_adjustment ON distrib (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  dateout,
  (CAST(ltrim(rtrim(vaccine)) AS bpchar)),
  (CAST(ltrim(rtrim(replace(lot, ltrim(rtrim('-')), ''))) AS bpchar)),
  (CAST(ltrim(rtrim(frompin)) AS bpchar)),
  action
) WHERE action <> 1;

CREATE UNIQUE INDEX IF NOT EXISTS dosesadm_unique_report ON dosesadm (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  adate,
  (CAST(ltrim(rtrim(vaccine)) AS bpchar)),
  dose,
  sector
);
