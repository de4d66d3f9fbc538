-- The tables and indexes of the vaccine-management database on SQLite.
--
-- Text columns compare without their trailing blanks. Every column may be Null,
-- and no key is unique: a row that is there twice is something rules report (see
-- sqlite_strict.sql for the unique indexes that may be added).
-- The indexes stand on the very expressions that the operations filter by, made
-- of the engine's own functions, so that any client of the engine can write.

CREATE TABLE IF NOT EXISTS provider (
  "pin" TEXT COLLATE RTRIM,
  "contact" TEXT COLLATE RTRIM,
  "lastname" TEXT COLLATE RTRIM,
  "address" TEXT COLLATE RTRIM,
  "addres2" TEXT COLLATE RTRIM,
  "city" TEXT COLLATE RTRIM,
  "state" TEXT COLLATE RTRIM,
  "zipcode" TEXT COLLATE RTRIM,
  "ml_contact" TEXT COLLATE RTRIM,
  "ml_address" TEXT COLLATE RTRIM,
  "ml_addres2" TEXT COLLATE RTRIM,
  "ml_city" TEXT COLLATE RTRIM,
  "ml_state" TEXT COLLATE RTRIM,
  "ml_zipcode" TEXT COLLATE RTRIM,
  "note" TEXT COLLATE RTRIM,
  "phone" TEXT COLLATE RTRIM,
  "fax" TEXT COLLATE RTRIM,
  "codes" TEXT COLLATE RTRIM,
  "phone2" TEXT COLLATE RTRIM,
  "fax2" TEXT COLLATE RTRIM,
  "createdate" DATE,
  "county" TEXT COLLATE RTRIM,
  "provid" INTEGER,
  "sector" NUMERIC,
  "datevfc" DATE,
  "extension" TEXT COLLATE RTRIM,
  "firstname" TEXT COLLATE RTRIM,
  "initial" TEXT COLLATE RTRIM,
  "title" TEXT COLLATE RTRIM,
  "linkpin" TEXT COLLATE RTRIM,
  "alphaid" TEXT COLLATE RTRIM,
  "active" TEXT COLLATE RTRIM,
  "subdiv" TEXT COLLATE RTRIM,
  "cat1" TEXT COLLATE RTRIM,
  "cat2" TEXT COLLATE RTRIM,
  "cat3" TEXT COLLATE RTRIM,
  "cat4" TEXT COLLATE RTRIM,
  "chgdate" DATE,
  "userid" TEXT COLLATE RTRIM
);

CREATE TABLE IF NOT EXISTS enroll (
  "pin" TEXT COLLATE RTRIM,
  "ensource" TEXT COLLATE RTRIM,
  "chgdate" DATE,
  "userid" TEXT COLLATE RTRIM,
  "allkids1" INTEGER DEFAULT 0,
  "medicaid1" INTEGER DEFAULT 0,
  "uninsured1" INTEGER DEFAULT 0,
  "amindian1" INTEGER DEFAULT 0,
  "fqhc_rhc1" INTEGER DEFAULT 0,
  "vfckids1" INTEGER DEFAULT 0,
  "g317kids1" INTEGER DEFAULT 0,
  "statekids1" INTEGER DEFAULT 0,
  "other1" INTEGER DEFAULT 0,
  "allkids2" INTEGER DEFAULT 0,
  "medicaid2" INTEGER DEFAULT 0,
  "uninsured2" INTEGER DEFAULT 0,
  "amindian2" INTEGER DEFAULT 0,
  "fqhc_rhc2" INTEGER DEFAULT 0,
  "vfckids2" INTEGER DEFAULT 0,
  "g317kids2" INTEGER DEFAULT 0,
  "statekids2" INTEGER DEFAULT 0,
  "other2" INTEGER DEFAULT 0,
  "allkids3" INTEGER DEFAULT 0,
  "medicaid3" INTEGER DEFAULT 0,
  "uninsured3" INTEGER DEFAULT 0,
  "amindian3" INTEGER DEFAULT 0,
  "fqhc_rhc3" INTEGER DEFAULT 0,
  "vfckids3" INTEGER DEFAULT 0,
  "g317kids3" INTEGER DEFAULT 0,
  "statekids3" INTEGER DEFAULT 0,
  "other3" INTEGER DEFAULT 0,
  "allkids4" INTEGER DEFAULT 0,
  "medicaid4" INTEGER DEFAULT 0,
  "uninsured4" INTEGER DEFAULT 0,
  "amindian4" INTEGER DEFAULT 0,
  "fqhc_rhc4" INTEGER DEFAULT 0,
  "vfckids4" INTEGER DEFAULT 0,
  "g317kids4" INTEGER DEFAULT 0,
  "statekids4" INTEGER DEFAULT 0,
  "other4" INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS physicn (
  "pin" TEXT COLLATE RTRIM,
  "lastname" TEXT COLLATE RTRIM,
  "firstname" TEXT COLLATE RTRIM,
  "initial" TEXT COLLATE RTRIM,
  "title" TEXT COLLATE RTRIM,
  "other1" TEXT COLLATE RTRIM,
  "medicaidno" TEXT COLLATE RTRIM,
  "medlicense" TEXT COLLATE RTRIM,
  "chgdate" DATE
);

CREATE TABLE IF NOT EXISTS neworder (
  "ordpin" TEXT COLLATE RTRIM,
  "rectype" TEXT COLLATE RTRIM,
  "pin" TEXT COLLATE RTRIM,
  "orddate" DATE,
  "vaccine" TEXT COLLATE RTRIM,
  "orddose" INTEGER DEFAULT 0,
  "fcode1" TEXT COLLATE RTRIM,
  "fdose1" INTEGER DEFAULT 0,
  "size" INTEGER DEFAULT 0,
  "cost" DOUBLE,
  "maker" TEXT COLLATE RTRIM,
  "contract" TEXT COLLATE RTRIM,
  "ndcno" TEXT COLLATE RTRIM,
  "chgdate" DATE,
  "userid" TEXT COLLATE RTRIM,
  "descrip" TEXT COLLATE RTRIM,
  "seekid" INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS influenza (
  "ordpin" TEXT COLLATE RTRIM,
  "rectype" TEXT COLLATE RTRIM,
  "pin" TEXT COLLATE RTRIM,
  "orddate" DATE,
  "vaccine" TEXT COLLATE RTRIM,
  "orddose" INTEGER DEFAULT 0,
  "fcode1" TEXT COLLATE RTRIM,
  "fdose1" INTEGER DEFAULT 0,
  "size" INTEGER DEFAULT 0,
  "cost" DOUBLE,
  "maker" TEXT COLLATE RTRIM,
  "contract" TEXT COLLATE RTRIM,
  "ndcno" TEXT COLLATE RTRIM,
  "chgdate" DATE,
  "userid" TEXT COLLATE RTRIM,
  "descrip" TEXT COLLATE RTRIM,
  "seekid" INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS distrib (
  "input" DATE,
  "dateout" DATE,
  "frompin" TEXT COLLATE RTRIM,
  "pin" TEXT COLLATE RTRIM,
  "vaccine" TEXT COLLATE RTRIM,
  "lot" TEXT COLLATE RTRIM,
  "doses" INTEGER DEFAULT 0,
  "units" INTEGER DEFAULT 0,
  "fdose1" INTEGER DEFAULT 0,
  "action" NUMERIC,
  "distid" INTEGER,
  "notes" TEXT COLLATE RTRIM,
  "chgdate" DATE,
  "status" TEXT COLLATE RTRIM,
  "shipped" INTEGER DEFAULT 0,
  "userid" TEXT COLLATE RTRIM
);

CREATE TABLE IF NOT EXISTS provhas (
  "pin" TEXT COLLATE RTRIM,
  "vaccine" TEXT COLLATE RTRIM,
  "doses" INTEGER DEFAULT 0,
  "chgdate" DATE,
  "idate" DATE,
  "provhasid" INTEGER,
  "userid" TEXT COLLATE RTRIM
);

CREATE TABLE IF NOT EXISTS dosesadm (
  "adate" DATE,
  "pin" TEXT COLLATE RTRIM,
  "sector" NUMERIC,
  "vaccine" TEXT COLLATE RTRIM,
  "position" INTEGER DEFAULT 0,
  "dose" NUMERIC,
  "g1" INTEGER DEFAULT 0,
  "g2" INTEGER DEFAULT 0,
  "g3" INTEGER DEFAULT 0,
  "g4" INTEGER DEFAULT 0,
  "g5" INTEGER DEFAULT 0,
  "g6" INTEGER DEFAULT 0,
  "g7" INTEGER DEFAULT 0,
  "g8" INTEGER DEFAULT 0,
  "g9" INTEGER DEFAULT 0,
  "g10" INTEGER DEFAULT 0,
  "g11" INTEGER DEFAULT 0,
  "g12" INTEGER DEFAULT 0,
  "g13" INTEGER DEFAULT 0,
  "rowtot" INTEGER DEFAULT 0,
  "dauzr1" INTEGER DEFAULT 0,
  "dauzr2" INTEGER DEFAULT 0,
  "dauzr3" INTEGER DEFAULT 0,
  "dauzr4" INTEGER DEFAULT 0,
  "dauzr5" INTEGER DEFAULT 0,
  "dauzr6" INTEGER DEFAULT 0,
  "dauzr7" INTEGER DEFAULT 0,
  "dauzr8" INTEGER DEFAULT 0,
  "dauzrtot" INTEGER DEFAULT 0,
  "chgdate" DATE,
  "userid" TEXT COLLATE RTRIM,
  "dosesadmid" INTEGER
);

CREATE TABLE IF NOT EXISTS stock (
  "pin" TEXT COLLATE RTRIM,
  "datein" DATE,
  "doses" INTEGER DEFAULT 0,
  "lot" TEXT COLLATE RTRIM,
  "vaccine" TEXT COLLATE RTRIM,
  "maker" TEXT COLLATE RTRIM,
  "expiry" DATE,
  "tracking" TEXT COLLATE RTRIM
);

CREATE TABLE IF NOT EXISTS lots (
  "vaccine" TEXT COLLATE RTRIM,
  "lot" TEXT COLLATE RTRIM,
  "expiry" DATE,
  "maker" TEXT COLLATE RTRIM,
  "remain" INTEGER DEFAULT 0,
  "size" INTEGER DEFAULT 0,
  "pin" TEXT COLLATE RTRIM
);

CREATE TABLE IF NOT EXISTS pvaccref (
  "vaccine" TEXT COLLATE RTRIM,
  "maker" TEXT COLLATE RTRIM,
  "begin" DATE,
  "end" DATE,
  "minbulk" INTEGER,
  "unitsize" INTEGER,
  "pkgsize" INTEGER,
  "ndcno" TEXT COLLATE RTRIM,
  "cost" DOUBLE,
  "contractid" TEXT COLLATE RTRIM,
  "sel_maker" TEXT COLLATE RTRIM,
  "dos_wind" TEXT COLLATE RTRIM,
  "excfunds" TEXT COLLATE RTRIM,
  "descrip" TEXT COLLATE RTRIM,
  "locactiv" LOGICAL,
  "maxno" INTEGER
);

CREATE TABLE IF NOT EXISTS vaccref (
  "vaccine" TEXT COLLATE RTRIM,
  "maxno" INTEGER,
  "locactiv" TEXT COLLATE RTRIM
);

CREATE TABLE IF NOT EXISTS funding (
  "fundcode" TEXT COLLATE RTRIM
);

CREATE TABLE IF NOT EXISTS actref (
  "status" TEXT COLLATE RTRIM,
  "action" NUMERIC
);

CREATE TABLE IF NOT EXISTS sectoref (
  "sector" NUMERIC
);

CREATE TABLE IF NOT EXISTS subdiv (
  "subdiv" TEXT COLLATE RTRIM
);

CREATE TABLE IF NOT EXISTS zipcodes (
  "zip" TEXT COLLATE RTRIM,
  "cntyname" TEXT COLLATE RTRIM
);

CREATE TABLE IF NOT EXISTS nextid (
  "ctablename" TEXT COLLATE RTRIM,
  "inextid" INTEGER
);

CREATE INDEX IF NOT EXISTS provider_by_pin ON provider (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  sector
);
CREATE INDEX IF NOT EXISTS enroll_by_pin ON enroll (
  ltrim(rtrim(pin)) COLLATE RTRIM
);
CREATE INDEX IF NOT EXISTS physicn_by_pin ON physicn (
  pin,
  lastname,
  firstname
);
CREATE INDEX IF NOT EXISTS neworder_by_order ON neworder (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  orddate,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  ltrim(rtrim(fcode1)) COLLATE RTRIM
);
CREATE INDEX IF NOT EXISTS influenza_by_order ON influenza (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  orddate,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  ltrim(rtrim(fcode1)) COLLATE RTRIM
);
CREATE INDEX IF NOT EXISTS distrib_by_shipment ON distrib (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  dateout,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  ltrim(rtrim(replace(lot, ltrim(rtrim('-')), ''))) COLLATE RTRIM
);
CREATE INDEX IF NOT EXISTS dosesadm_by_report ON dosesadm (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  adate,
  ltrim(rtrim(vaccine)) COLLATE RTRIM
);
CREATE INDEX IF NOT EXISTS dosesadm_by_pin ON dosesadm (
  pin,
  adate
);
CREATE INDEX IF NOT EXISTS stock_by_pin ON stock (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  datein
);
CREATE INDEX IF NOT EXISTS stock_by_vaccine ON stock (
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  datein
);
CREATE INDEX IF NOT EXISTS stock_by_pin_and_vaccine ON stock (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  datein
);
CREATE INDEX IF NOT EXISTS stock_by_lot ON stock (
  ltrim(rtrim(replace(lot, ltrim(rtrim('-')), ''))) COLLATE RTRIM,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  datein
);
CREATE INDEX IF NOT EXISTS stock_by_datein ON stock (
  datein
);
CREATE INDEX IF NOT EXISTS lots_by_pin ON lots (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  lot,
  expiry
);
CREATE INDEX IF NOT EXISTS pvaccref_by_vaccine ON pvaccref (
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  pkgsize
);
CREATE INDEX IF NOT EXISTS pvaccref_by_locactiv ON pvaccref (
  locactiv,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  vaccine
);
CREATE INDEX IF NOT EXISTS pvaccref_by_names ON pvaccref (
  vaccine
);
CREATE INDEX IF NOT EXISTS vaccref_by_vaccine ON vaccref (
  ltrim(rtrim(vaccine)) COLLATE RTRIM
);
CREATE INDEX IF NOT EXISTS funding_by_fundcode ON funding (
  ltrim(rtrim(fundcode)) COLLATE RTRIM
);
CREATE INDEX IF NOT EXISTS actref_by_trimmed ON actref (
  ltrim(rtrim(status)) COLLATE RTRIM
);
CREATE INDEX IF NOT EXISTS actref_by_status ON actref (
  status
);
CREATE INDEX IF NOT EXISTS sectoref_by_sector ON sectoref (
  sector
);
CREATE INDEX IF NOT EXISTS subdiv_by_subdiv ON subdiv (
  ltrim(rtrim(subdiv)) COLLATE RTRIM
);
CREATE INDEX IF NOT EXISTS zipcodes_by_zip ON zipcodes (
  zip,
  cntyname
);
CREATE INDEX IF NOT EXISTS nextid_by_ctablename ON nextid (
  ltrim(rtrim(upper(ctablename))) COLLATE RTRIM
);
