-- The warehouse of a retail chain: three facts (sales, returns, inventory) that share products,
-- stores and dates, and a branch for accounting beside them. Amounts are in cents.

-- Geography, a snowflake. Stores and customers have their places in it; suppliers and cost centers
-- only have a country.

CREATE TABLE country (
  country_key INTEGER PRIMARY KEY,
  country_name TEXT NOT NULL UNIQUE
);

CREATE TABLE region (
  region_key INTEGER PRIMARY KEY,
  region_name TEXT NOT NULL,
  country_key INTEGER NOT NULL REFERENCES country (country_key)
);

CREATE TABLE city (
  city_key INTEGER PRIMARY KEY,
  city_name TEXT NOT NULL,
  region_key INTEGER NOT NULL REFERENCES region (region_key)
);

-- Time

CREATE TABLE fiscal_period (
  fiscal_period_key INTEGER PRIMARY KEY,
  fiscal_year INTEGER NOT NULL,
  fiscal_quarter INTEGER NOT NULL,
  UNIQUE (fiscal_year, fiscal_quarter)
);

CREATE TABLE calendar (
  date_key INTEGER PRIMARY KEY,
  calendar_date TEXT NOT NULL UNIQUE,
  calendar_month TEXT NOT NULL,
  calendar_year INTEGER NOT NULL,
  fiscal_period_key INTEGER NOT NULL REFERENCES fiscal_period (fiscal_period_key)
);

-- Accounting: which country's books a store is kept in has nothing to do with where it stands.

CREATE TABLE account (
  account_key INTEGER PRIMARY KEY,
  account_name TEXT NOT NULL,
  parent_account_key INTEGER REFERENCES account (account_key)
);

CREATE TABLE cost_center (
  cost_center_key INTEGER PRIMARY KEY,
  cost_center_name TEXT NOT NULL,
  country_key INTEGER NOT NULL REFERENCES country (country_key)
);

CREATE TABLE supplier (
  supplier_key INTEGER PRIMARY KEY,
  supplier_name TEXT NOT NULL,
  country_key INTEGER NOT NULL REFERENCES country (country_key)
);

CREATE TABLE ledger_entry (
  ledger_entry_key INTEGER PRIMARY KEY,
  account_key INTEGER NOT NULL REFERENCES account (account_key),
  cost_center_key INTEGER NOT NULL REFERENCES cost_center (cost_center_key),
  fiscal_period_key INTEGER NOT NULL REFERENCES fiscal_period (fiscal_period_key),
  supplier_key INTEGER REFERENCES supplier (supplier_key),
  booked_amount INTEGER NOT NULL
);

-- Products, another snowflake

CREATE TABLE category (
  category_key INTEGER PRIMARY KEY,
  category_name TEXT NOT NULL UNIQUE
);

CREATE TABLE subcategory (
  subcategory_key INTEGER PRIMARY KEY,
  subcategory_name TEXT NOT NULL,
  category_key INTEGER NOT NULL REFERENCES category (category_key)
);

CREATE TABLE product (
  product_key INTEGER PRIMARY KEY,
  product_name TEXT NOT NULL,
  list_price INTEGER NOT NULL,
  subcategory_key INTEGER NOT NULL REFERENCES subcategory (subcategory_key),
  supplier_key INTEGER NOT NULL REFERENCES supplier (supplier_key)
);

-- Stores, customers, promotions

CREATE TABLE store (
  store_key INTEGER PRIMARY KEY,
  store_name TEXT NOT NULL,
  city_key INTEGER NOT NULL REFERENCES city (city_key),
  cost_center_key INTEGER NOT NULL REFERENCES cost_center (cost_center_key)
);

CREATE TABLE customer (
  customer_key INTEGER PRIMARY KEY,
  customer_name TEXT NOT NULL,
  city_key INTEGER NOT NULL REFERENCES city (city_key)
);

CREATE TABLE household (
  household_key INTEGER PRIMARY KEY,
  household_size TEXT NOT NULL
);

-- A bridge: people live in several households, and households have several people.
CREATE TABLE customer_household (
  customer_key INTEGER NOT NULL REFERENCES customer (customer_key),
  household_key INTEGER NOT NULL REFERENCES household (household_key),
  share_percent INTEGER NOT NULL,
  PRIMARY KEY (customer_key, household_key)
);

CREATE TABLE promotion (
  promotion_key INTEGER PRIMARY KEY,
  promotion_name TEXT NOT NULL UNIQUE
);

-- Facts. A line that is not shipped yet has no date of shipping.

CREATE TABLE sales (
  order_number INTEGER NOT NULL,
  line_number INTEGER NOT NULL,
  product_key INTEGER NOT NULL REFERENCES product (product_key),
  store_key INTEGER NOT NULL REFERENCES store (store_key),
  customer_key INTEGER NOT NULL REFERENCES customer (customer_key),
  promotion_key INTEGER REFERENCES promotion (promotion_key),
  order_date_key INTEGER NOT NULL REFERENCES calendar (date_key),
  due_date_key INTEGER NOT NULL REFERENCES calendar (date_key),
  ship_date_key INTEGER REFERENCES calendar (date_key),
  quantity INTEGER NOT NULL,
  amount INTEGER NOT NULL,
  PRIMARY KEY (order_number, line_number)
);

CREATE TABLE return_reason (
  return_reason_key INTEGER PRIMARY KEY,
  reason TEXT NOT NULL UNIQUE
);

-- Goods need not be returned to the store that sold them.
CREATE TABLE returns (
  return_key INTEGER PRIMARY KEY,
  order_number INTEGER NOT NULL,
  line_number INTEGER NOT NULL,
  store_key INTEGER NOT NULL REFERENCES store (store_key),
  date_key INTEGER NOT NULL REFERENCES calendar (date_key),
  return_reason_key INTEGER NOT NULL REFERENCES return_reason (return_reason_key),
  returned_quantity INTEGER NOT NULL,
  FOREIGN KEY (order_number, line_number) REFERENCES sales (order_number, line_number)
);

CREATE TABLE inventory (
  date_key INTEGER NOT NULL REFERENCES calendar (date_key),
  product_key INTEGER NOT NULL REFERENCES product (product_key),
  store_key INTEGER NOT NULL REFERENCES store (store_key),
  on_hand INTEGER NOT NULL,
  PRIMARY KEY (date_key, product_key, store_key)
);
